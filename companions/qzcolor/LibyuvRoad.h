// What is left to libyuv: formats to be read, and those whose pixels aren't words or halves of words.
#pragma once

#include "companions/qzcolor/Image.h"

namespace qzcolor {

// Any RGB or BGR format but RGB8 into RGB32 pixels of the same size.
void Unpack(const Rows& from, uint32_t format, const Rows& words);
// RGB32 pixels into RGB24, BGR24 or BGR32 of the same size. `to` may be `words` for the last.
void PackBytes(const Rows& words, uint32_t format, const Rows& to);

// RGB32 pixels into I420, YV12, YUY2 or UYVY (BT.601, 16 to 235), in the size of the rectangle. It begins at even
// places. An odd last column or row has its own luma, and shares the colour of what stands before it.
void PackYuv(const Rows& words, uint32_t format, const Image& to);

}  // namespace qzcolor
