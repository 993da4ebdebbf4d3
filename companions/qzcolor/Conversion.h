// One conversion from call to pixels, and the table of all of them.
#pragma once

#include "companions/qzcolor/Image.h"

namespace qzcolor {

// Takes the source's rectangle to the destination's, cut to their images. Result codes of <tdkviz/com.h>, and
// nothing is done with E_INVALIDARG: for null pixels, a pitch below a row's bytes, a side of a rectangle above
// kMaxSide, and a rectangle in a YUV format that begins at an odd place. [any]
int32_t Convert(uint32_t from, Image source, uint32_t to, Image destination);

// The converter of a pair of format ids, or null. From RGB32, ARGB, RGB24, RGB565, RGB555 and the BGR formats to
// all of these, I420, YV12, YUY2 and UYVY, and to RGB8 once it has a palette; from the YUV formats to themselves,
// for scaling. [any]
ColorConverterFunction FindConverter(uint32_t from, uint32_t to);
// The formats into which there is a converter from this one: stores at most `capacity` of them, gives how many there
// are. [any]
uint32_t FindTargets(uint32_t from, bool withYuv, uint32_t* formats, uint32_t capacity);

}  // namespace qzcolor
