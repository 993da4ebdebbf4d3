// The palette of RGB8 pictures, shared by all threads.
#pragma once

#include "companions/qzcolor/Image.h"

namespace qzcolor {

struct PaletteEntry {
    uint8_t Red, Green, Blue, Spare;
};

// `count`: 1 to 256. False when memory has run out.
bool StorePalette(const PaletteEntry* entries, uint32_t count);
bool HasPalette();
// RGB32 pixels into the nearest entries of the palette, by five bits of each colour. Nothing without a palette.
void PackThroughPalette(const Rows& words, const Rows& to);

}  // namespace qzcolor
