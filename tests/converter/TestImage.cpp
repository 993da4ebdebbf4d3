#include "tests/converter/TestImage.h"

#include <cstring>
#include <random>
#include <stdexcept>

#include "companions/qzcolor/Conversion.h"

namespace converter_test {

namespace {

// Where each colour stands in a pixel: red, green, blue.
struct Layout {
    uint32_t format;
    int32_t bytes;
    int shift[3], bits[3];
};
constexpr Layout kLayouts[] = {
    {FormatRGB32, 4, {16, 8, 0}, {8, 8, 8}},
    {FormatARGB, 4, {16, 8, 0}, {8, 8, 8}},
    {FormatBGR32, 4, {0, 8, 16}, {8, 8, 8}},
    {FormatRGB24, 3, {16, 8, 0}, {8, 8, 8}},
    {FormatBGR24, 3, {0, 8, 16}, {8, 8, 8}},
    {FormatRGB565, 2, {11, 5, 0}, {5, 6, 5}},
    {FormatRGB555, 2, {10, 5, 0}, {5, 5, 5}},
    {FormatBGR565, 2, {0, 5, 11}, {5, 6, 5}},
    {FormatBGR555, 2, {0, 5, 10}, {5, 5, 5}},
    {FormatYUY2, 2, {}, {}},
    {FormatUYVY, 2, {}, {}},
    {FormatI420, 1, {}, {}},
    {FormatYV12, 1, {}, {}},
    {FormatRGB8, 1, {}, {}},
};

const Layout& LayoutOf(uint32_t format) {
    for (const Layout& layout : kLayouts) {
        if (layout.format == format) return layout;
    }
    throw std::logic_error("a format that is not in the table");
}

bool IsPlanar(uint32_t format) {
    return format == FormatI420 || format == FormatYV12;
}

}  // namespace

TestImage::TestImage(uint32_t imageFormat, int32_t imageWidth, int32_t imageHeight, bool bottomUp, int32_t padding,
                     bool atEnd)
    : format(imageFormat),
      width(imageWidth),
      height(imageHeight),
      bytes(LayoutOf(imageFormat).bytes),
      pitch((bottomUp ? -1 : 1) * (imageWidth * bytes + padding)) {
    size_ = static_cast<size_t>(Pitch() * height);
    if (IsPlanar(format)) size_ += static_cast<size_t>(2 * (Pitch() / 2) * (height / 2));
    guarded_ = std::make_unique<tdkviz::test::GuardedMemory>(size_);
    memory = guarded_->Block(size_, atEnd);
}

void TestImage::FillWithNoise(uint32_t seed) {
    std::minstd_rand noise(seed);
    for (size_t i = 0; i < size_; ++i) memory[i] = static_cast<uint8_t>(noise() >> 8);
}

ptrdiff_t TestImage::FirstChangeOutside(const Area& area) const {
    const ptrdiff_t plane = Pitch() * height;
    for (ptrdiff_t i = 0; i < plane; ++i) {
        if (memory[i] == remembered_[static_cast<size_t>(i)]) continue;
        const auto row = static_cast<int32_t>(i / Pitch());
        const int32_t y = pitch < 0 ? height - 1 - row : row;
        if (i % Pitch() >= ptrdiff_t{width} * bytes || !area.Contains(static_cast<int32_t>(i % Pitch()) / bytes, y))
            return i;
    }
    return -1;
}

uint32_t TestImage::WordAt(int32_t x, int32_t y) const {
    uint32_t word = 0;
    std::memcpy(&word, Pixel(x, y), static_cast<size_t>(bytes));
    return word;
}

Color TestImage::At(int32_t x, int32_t y) const {
    return Decode(format, WordAt(x, y));
}

void TestImage::Set(int32_t x, int32_t y, const Color& color) {
    const uint32_t word = Encode(format, color);
    std::memcpy(Pixel(x, y), &word, static_cast<size_t>(bytes));
}

uint8_t TestImage::HalfAt(int plane, int32_t x, int32_t y) const {
    const ptrdiff_t row = pitch < 0 ? height / 2 - 1 - y : y;
    return memory[Pitch() * height + (plane * ptrdiff_t{height / 2} + row) * (Pitch() / 2) + x];
}

void TestImage::FillHalves(uint8_t u, uint8_t v) {
    const auto plane = static_cast<size_t>(Pitch() / 2 * (height / 2));
    uint8_t* first = memory + Pitch() * height;
    std::memset(first, format == FormatYV12 ? v : u, plane);
    std::memset(first + plane, format == FormatYV12 ? u : v, plane);
}

int32_t RunConverter(const TestImage& from, const Area& fromArea, const TestImage& to, const Area& toArea) {
    const ColorConverterFunction convert = qzcolor::FindConverter(from.format, to.format);
    if (!convert) throw std::logic_error("no such converter");
    return convert(to.memory, to.width, to.height, to.pitch, toArea.x, toArea.y, toArea.width, toArea.height,
                   from.memory, from.width, from.height, from.pitch, fromArea.x, fromArea.y, fromArea.width,
                   fromArea.height);
}

uint32_t Encode(uint32_t format, const Color& color) {
    const Layout& layout = LayoutOf(format);
    const int parts[3] = {color.red, color.green, color.blue};
    uint32_t word = 0;
    for (int i = 0; i < 3; ++i) word |= static_cast<uint32_t>(parts[i] >> (8 - layout.bits[i])) << layout.shift[i];
    return word;
}

Color Decode(uint32_t format, uint32_t pixel) {
    const Layout& layout = LayoutOf(format);
    int parts[3] = {};
    for (int i = 0; i < 3; ++i) {
        const int bits = layout.bits[i];
        const int level = static_cast<int>(pixel >> layout.shift[i]) & ((1 << bits) - 1);
        // The full range again: the high bits once more below.
        parts[i] = level << (8 - bits) | level >> (2 * bits - 8);
    }
    return {parts[0], parts[1], parts[2]};
}

}  // namespace converter_test
