// Images between pages that can't be touched, and a model of their formats, pixel by pixel.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <tdkviz/color_converter.h>

#include "tests/support/GuardedMemory.h"

namespace converter_test {

struct Area {
    int32_t x = 0, y = 0, width = 0, height = 0;
    bool Contains(int32_t px, int32_t py) const { return px >= x && py >= y && px < x + width && py < y + height; }
};

struct Color {
    int red = 0, green = 0, blue = 0;
    friend bool operator==(const Color&, const Color&) = default;
};

// Pixels of one format, with padding behind each row, flush with the page before or behind that can't be touched.
class TestImage {
public:
    TestImage(uint32_t imageFormat, int32_t imageWidth, int32_t imageHeight, bool bottomUp, int32_t padding = 0,
              bool atEnd = true);

    // Any bytes; the same ones for the same seed.
    void FillWithNoise(uint32_t seed);
    // Keeps the bytes as they are now, for the next one to compare with.
    void Remember() { remembered_.assign(memory, memory + size_); }
    // The first byte that has changed since, -1 for none: `area`, in rows of the image's first plane, is free to
    // change. Of a planar image, so are the other planes.
    ptrdiff_t FirstChangeOutside(const Area& area) const;

    // Picture coordinates. RGB formats.
    Color At(int32_t x, int32_t y) const;
    uint32_t WordAt(int32_t x, int32_t y) const;  // the pixel as it stands
    void Set(int32_t x, int32_t y, const Color& color);
    uint8_t* Pixel(int32_t x, int32_t y) const { return memory + RowIndex(y) * Pitch() + ptrdiff_t{x} * bytes; }
    // Picture coordinates in the half-size plane of YUV, 0 or 1 in the order of memory.
    uint8_t HalfAt(int plane, int32_t x, int32_t y) const;
    // All of the half-size planes.
    void FillHalves(uint8_t u, uint8_t v);

    const uint32_t format;
    const int32_t width, height;
    const int32_t bytes;  // of a pixel
    const int32_t pitch;  // signed
    uint8_t* memory = nullptr;

private:
    ptrdiff_t Pitch() const { return pitch < 0 ? -ptrdiff_t{pitch} : pitch; }
    ptrdiff_t RowIndex(int32_t y) const { return pitch < 0 ? height - 1 - y : y; }

    size_t size_ = 0;
    std::unique_ptr<tdkviz::test::GuardedMemory> guarded_;
    std::vector<uint8_t> remembered_;
};

// As a converter's arguments.
int32_t RunConverter(const TestImage& from, const Area& fromArea, const TestImage& to, const Area& toArea);
inline Area Whole(const TestImage& image) {
    return {0, 0, image.width, image.height};
}

// What a colour becomes in a format, and what is left of it there.
uint32_t Encode(uint32_t format, const Color& color);
Color Decode(uint32_t format, uint32_t pixel);

inline constexpr std::array<uint32_t, 9> kRgbFormats = {FormatRGB32,  FormatRGB24,  FormatRGB565,
                                                        FormatRGB555, FormatARGB,   FormatBGR32,
                                                        FormatBGR24,  FormatBGR565, FormatBGR555};
inline constexpr std::array<uint32_t, 4> kYuvFormats = {FormatI420, FormatYV12, FormatYUY2, FormatUYVY};

}  // namespace converter_test
