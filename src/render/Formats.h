// Pixel formats: how they are told from bitmap headers, sizes and row pitches.
#pragma once

#include <cstdint>

#include <windows.h>

#include <tdkviz/color_converter.h>

namespace tdkviz {

inline constexpr int kPaletteEntries = 256;

// A bitmap header with room for three colour masks or a palette behind it.
struct BitmapInfoRecord {
    BITMAPINFOHEADER Header;
    union {
        DWORD Masks[3];
        RGBQUAD Palette[kPaletteEntries];
    };
};
static_assert(sizeof(BitmapInfoRecord) == 40 + 4 * kPaletteEntries);

// An entry of the palettes that FillBitmapInfo takes.
struct PaletteColor {
    uint8_t Red;
    uint8_t Green;
    uint8_t Blue;
    uint8_t Spare;
};

// Any thread; these read constant tables.

// FormatNone for null and for a header that nothing knows.
FormatId FormatFromBitmapInfo(const BitmapInfoRecord* info);
// Bytes of an image. 0 for a format without a size rule, a width or height below 1, and an image that
// doesn't fit 32 bits.
uint32_t ImageSize(uint32_t format, int32_t height, int32_t width);
// Signed bytes from one row to the next, negative for the bottom-up RGB and BGR images; 0 for FormatNone.
int32_t RowPitch(const BitmapInfoRecord* info);
// Writes the header, masks and palette of an image of this format; `capacity` is the room behind `info`
// in bytes. Gives the bytes filled, or 0 for an argument that makes no bitmap: nothing is written then.
uint32_t FillBitmapInfo(BitmapInfoRecord* info, uint32_t capacity, uint32_t format, int32_t width, int32_t height,
                        const PaletteColor* palette, uint32_t paletteCount);
// The format of the screen now; FormatNone if it can't be told.
FormatId GetDisplayFormat();

}  // namespace tdkviz
