// A rectangle of pixels in memory, the ground that all drawing of the layer ends on: bitmaps, DIB
// sections and the pictures of windows.
#pragma once

#include <cstdint>

namespace tdkp {

enum class PixelFormat : uint8_t {
    kNone,
    kMono,      // 1 bit, most significant first
    kIndexed8,  // 8-bit index into a palette
    kRgb555,    // 16 bits, x1 r5 g5 b5
    kRgb565,    // 16 bits, r5 g6 b5
    kRgb24,     // b, g, r bytes
    kRgb32,     // b, g, r, x bytes
    kBgr32,     // r, g, b, x bytes
};

constexpr int BitsPerPixel(PixelFormat format) {
    switch (format) {
        case PixelFormat::kNone:
            return 0;
        case PixelFormat::kMono:
            return 1;
        case PixelFormat::kIndexed8:
            return 8;
        case PixelFormat::kRgb555:
        case PixelFormat::kRgb565:
            return 16;
        case PixelFormat::kRgb24:
            return 24;
        case PixelFormat::kRgb32:
        case PixelFormat::kBgr32:
            return 32;
    }
    return 0;
}

// Of a format whose pixels are whole bytes.
constexpr int BytesPerPixel(PixelFormat format) {
    return BitsPerPixel(format) / 8;
}

// Row 0 is the topmost row of the picture. For a bottom-up bitmap `topRow` is the last row in memory
// and `pitch` is negative. The memory belongs to whoever made the raster.
struct Raster {
    uint8_t* topRow = nullptr;
    int32_t pitch = 0;  // bytes from one row to the one below it
    int32_t width = 0;
    int32_t height = 0;
    PixelFormat format = PixelFormat::kNone;
    const uint32_t* palette = nullptr;  // 256 entries 0x00RRGGBB for kIndexed8, 2 for kMono; else null
};

}  // namespace tdkp
