// YUV pictures in another size, plane by plane.
#pragma once

#include "companions/qzcolor/Image.h"

namespace qzcolor {

// Scales the rectangle of an I420, YV12, YUY2 or UYVY image into that of another of the same format. Both begin at
// even places. Colour that a source of a single column or row doesn't have is grey. False when memory has run out.
bool ScaleYuv(uint32_t format, const Image& from, const Image& to);

}  // namespace qzcolor
