// Single pixels of every raster format. A colour is 0x00RRGGBB; a raw pixel is what the raster stores, in the
// low bits. Widening a channel repeats its top bits below; narrowing drops the low bits; an indexed raster
// takes the nearest entry of its palette, the first of equals.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/gdi/Raster.h"

namespace tdkp {

constexpr int kPaletteEntries = 256;
constexpr int kMonoEntries = 2;
constexpr uint32_t kColorMask = 0x00FFFFFF;

// Bytes of a row of `width` pixels that starts on a byte, without padding.
constexpr int64_t RowBytes(PixelFormat format, int64_t width) {
    return (width * BitsPerPixel(format) + 7) / 8;
}

// Bytes of a row padded to 32 bits, as device-independent bitmaps have it.
constexpr int64_t DibPitch(int bitsPerPixel, int64_t width) {
    return (width * bitsPerPixel + 31) / 32 * 4;
}

inline uint8_t* RowOf(const Raster& raster, int y) {
    return raster.topRow + static_cast<ptrdiff_t>(y) * raster.pitch;
}

// The palette's entry nearest to a colour, by the sum of squared differences.
uint32_t NearestEntry(const uint32_t* palette, int entries, uint32_t color);

// Rows of any format, one pixel at a time, without a look at the format in the loop.
template <PixelFormat kFormat>
struct PixelCodec {
    static uint32_t ReadRaw(const uint8_t* row, int x) {
        if constexpr (kFormat == PixelFormat::kMono) {
            return (row[x >> 3] >> (7 - (x & 7))) & 1;
        } else if constexpr (kFormat == PixelFormat::kIndexed8) {
            return row[x];
        } else if constexpr (kFormat == PixelFormat::kRgb24) {
            const uint8_t* p = row + 3 * static_cast<ptrdiff_t>(x);
            return static_cast<uint32_t>(p[0] | (p[1] << 8) | (p[2] << 16));
        } else if constexpr (BitsPerPixel(kFormat) == 16) {
            uint16_t raw;
            std::memcpy(&raw, row + 2 * static_cast<ptrdiff_t>(x), sizeof(raw));
            return raw;
        } else {
            uint32_t raw;
            std::memcpy(&raw, row + 4 * static_cast<ptrdiff_t>(x), sizeof(raw));
            return raw;
        }
    }

    static void WriteRaw(uint8_t* row, int x, uint32_t raw) {
        if constexpr (kFormat == PixelFormat::kMono) {
            const uint8_t bit = static_cast<uint8_t>(0x80 >> (x & 7));
            row[x >> 3] = static_cast<uint8_t>((raw & 1) != 0 ? row[x >> 3] | bit : row[x >> 3] & ~bit);
        } else if constexpr (kFormat == PixelFormat::kIndexed8) {
            row[x] = static_cast<uint8_t>(raw);
        } else if constexpr (kFormat == PixelFormat::kRgb24) {
            uint8_t* p = row + 3 * static_cast<ptrdiff_t>(x);
            p[0] = static_cast<uint8_t>(raw);
            p[1] = static_cast<uint8_t>(raw >> 8);
            p[2] = static_cast<uint8_t>(raw >> 16);
        } else if constexpr (BitsPerPixel(kFormat) == 16) {
            const uint16_t word = static_cast<uint16_t>(raw);
            std::memcpy(row + 2 * static_cast<ptrdiff_t>(x), &word, sizeof(word));
        } else {
            std::memcpy(row + 4 * static_cast<ptrdiff_t>(x), &raw, sizeof(raw));
        }
    }

    static uint32_t Decode(uint32_t raw, const uint32_t* palette) {
        if constexpr (kFormat == PixelFormat::kMono || kFormat == PixelFormat::kIndexed8) {
            return palette[raw] & kColorMask;
        } else if constexpr (kFormat == PixelFormat::kRgb555) {
            return Widen5(raw >> 10) << 16 | Widen5(raw >> 5) << 8 | Widen5(raw);
        } else if constexpr (kFormat == PixelFormat::kRgb565) {
            const uint32_t green = (raw >> 5) & 0x3F;
            return Widen5(raw >> 11) << 16 | (green << 2 | green >> 4) << 8 | Widen5(raw);
        } else if constexpr (kFormat == PixelFormat::kBgr32) {
            return SwapRedBlue(raw);
        } else {
            return raw & kColorMask;
        }
    }

    static uint32_t Encode(uint32_t color, const uint32_t* palette) {
        if constexpr (kFormat == PixelFormat::kMono) {
            return NearestEntry(palette, kMonoEntries, color);
        } else if constexpr (kFormat == PixelFormat::kIndexed8) {
            return NearestEntry(palette, kPaletteEntries, color);
        } else if constexpr (kFormat == PixelFormat::kRgb555) {
            return ((color >> 9) & 0x7C00) | ((color >> 6) & 0x03E0) | ((color >> 3) & 0x001F);
        } else if constexpr (kFormat == PixelFormat::kRgb565) {
            return ((color >> 8) & 0xF800) | ((color >> 5) & 0x07E0) | ((color >> 3) & 0x001F);
        } else if constexpr (kFormat == PixelFormat::kBgr32) {
            return SwapRedBlue(color);
        } else {
            return color & kColorMask;
        }
    }

    static constexpr uint32_t SwapRedBlue(uint32_t value) {
        return (value & 0xFF) << 16 | (value & 0xFF00) | ((value >> 16) & 0xFF);
    }

private:
    static constexpr uint32_t Widen5(uint32_t channel) { return ((channel & 0x1F) << 3) | ((channel & 0x1F) >> 2); }
};

// The same for one pixel of a raster; the place must lie inside of it.
uint32_t ReadColor(const Raster& raster, int x, int y);
void WriteRaw(const Raster& raster, int x, int y, uint32_t raw);
// The raw pixel that stands for a colour in this raster.
uint32_t EncodeColor(const Raster& raster, uint32_t color);
uint32_t DecodeRaw(const Raster& raster, uint32_t raw);

// COLORREF (0x00BBGGRR) to colour and back.
constexpr uint32_t ColorFromRef(uint32_t reference) {
    return PixelCodec<PixelFormat::kRgb32>::SwapRedBlue(reference);
}
constexpr uint32_t RefFromColor(uint32_t color) {
    return PixelCodec<PixelFormat::kRgb32>::SwapRedBlue(color);
}

}  // namespace tdkp
