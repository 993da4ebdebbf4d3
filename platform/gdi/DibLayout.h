// What a bitmap header says about pixels in memory.
#pragma once

#include <wingdi.h>

#include <cstddef>
#include <cstdint>

#include "platform/gdi/Raster.h"

namespace tdkp {

struct DibLayout {
    PixelFormat format = PixelFormat::kNone;
    int width = 0;
    int height = 0;  // above 0
    bool topDown = false;
    int bits = 0;
    uint32_t compression = BI_RGB;
    size_t pitch = 0;      // bytes from row to row in memory
    size_t imageSize = 0;  // bytes
};

// False if the header describes nothing that the layer draws (unknown size or form, no pixels, above 2 GB).
bool ParseDib(const BITMAPINFO& info, DibLayout* layout);

// The raster over `lines` rows of a bitmap's memory, in the row order of its header.
Raster DibRaster(const DibLayout& layout, uint8_t* bits, int lines, const uint32_t* palette);

// The three masks of a header with BI_BITFIELDS, and the colours behind them.
DWORD* DibMasks(BITMAPINFO& info);
RGBQUAD* DibColors(BITMAPINFO& info);
// Reads the colour table that stands in a header of up to 8 bits; entries that it doesn't have are black.
void ReadDibColors(const BITMAPINFO& info, const DibLayout& layout, uint32_t* palette);

// The format of pixels without masks; kNone for a bit count that the layer doesn't draw.
PixelFormat FormatOfBits(int bits);
// The masks of a format of 16 or 32 bits; false for others.
bool MasksOf(PixelFormat format, DWORD masks[3]);

constexpr uint32_t ColorFromQuad(const RGBQUAD& quad) {
    return static_cast<uint32_t>(quad.rgbRed) << 16 | static_cast<uint32_t>(quad.rgbGreen) << 8 | quad.rgbBlue;
}
constexpr RGBQUAD QuadFromColor(uint32_t color) {
    return {static_cast<BYTE>(color), static_cast<BYTE>(color >> 8), static_cast<BYTE>(color >> 16), 0};
}

}  // namespace tdkp
