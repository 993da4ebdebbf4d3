// Images as callers describe them, and the rows of pixels in them.
#pragma once

#include <cstddef>
#include <cstdint>

#include <tdkviz/color_converter.h>

namespace qzcolor {

// A rectangle of pixels, top row first.
struct Rows {
    uint8_t* first = nullptr;
    ptrdiff_t step = 0;  // signed bytes from one row to the next lower one
    int32_t width = 0, height = 0;

    uint8_t* At(int32_t y) const { return first + y * step; }
    Rows Reversed() const { return {At(height - 1), -step, width, height}; }
    bool HasSizeOf(const Rows& other) const { return width == other.width && height == other.height; }
};

// A rectangle of an image. The source's pixels come as an Image too, and are never written.
struct Image {
    uint8_t* pixels;        // first byte in memory
    int32_t width, height;  // of the whole image
    int32_t pitch;          // bytes; negative: the rows are bottom-up
    int32_t x, y, rectWidth, rectHeight;

    // Cuts the rectangle to the image. False if nothing is left.
    bool Clip();
    // The rectangle in an image, or in its plane of luma.
    Rows Pixels(int32_t bytesPerPixel) const;
    // The rectangle in one of the two planes, 0 or 1, that follow the luma at half its size, rounded down.
    Rows HalfPlane(int index) const;
};

inline constexpr int32_t kMaxSide = 32768;  // of a rectangle

// 0 for a format that isn't one of single RGB pixels.
int32_t RgbBytesPerPixel(uint32_t format);
// An image that has pixels, a pitch not below a row's bytes (of luma, if it has planes), and a rectangle that isn't
// too large. For formats that this library reads or writes.
bool IsSound(uint32_t format, const Image& image);

// RGB32 or ARGB: what libyuv calls ARGB.
inline bool IsPlainWord(uint32_t format) {
    return format == FormatRGB32 || format == FormatARGB;
}

}  // namespace qzcolor
