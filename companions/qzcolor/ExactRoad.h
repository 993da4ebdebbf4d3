// Pictures whose pixels are taken one by one: the same size, and exactly doubled.
#pragma once

#include "companions/qzcolor/Image.h"

namespace qzcolor {

// Rectangles of the same size and format.
void CopyRows(const Rows& from, const Rows& to, int32_t bytesPerPixel);
// RGB32 pixels into a single-pixel format, in the same size. `to` may be `words` if the format is one of words.
void PackRows(const Rows& words, uint32_t format, const Rows& to);

bool IsDouble(const Rows& from, const Rows& to);
// Enlarges RGB32 pixels and takes them to a single-pixel format. False when memory has run out.
bool DoubleRows(const Rows& words, uint32_t format, const Rows& to);

}  // namespace qzcolor
