#include "companions/qzcolor/ExactRoad.h"

#include <cstring>

#include "companions/qzcolor/LibyuvRoad.h"
#include "companions/qzcolor/Palette.h"
#include "companions/qzcolor/RowTable.h"
#include "companions/qzcolor/Scratch.h"

namespace qzcolor {

void CopyRows(const Rows& from, const Rows& to, int32_t bytesPerPixel) {
    const size_t bytes = size_t(from.width) * size_t(bytesPerPixel);
    for (int32_t y = 0; y < from.height; ++y) std::memcpy(to.At(y), from.At(y), bytes);
}

void PackRows(const Rows& words, uint32_t format, const Rows& to) {
    if (format == FormatRGB8) return PackThroughPalette(words, to);
    const auto pack = BestRowTable().Pack[format];
    if (!pack) return PackBytes(words, format, to);
    for (int32_t y = 0; y < words.height; ++y) pack(words.At(y), to.At(y), words.width);
}

bool IsDouble(const Rows& from, const Rows& to) {
    return int64_t{from.width} * 2 == to.width && int64_t{from.height} * 2 == to.height;
}

namespace {

// Without a loop of its own a format gets one row doubled in words, packed, and copied.
bool DoubleThroughWords(const Rows& words, uint32_t format, const Rows& to) {
    const size_t bytes = size_t(to.width) * size_t(RgbBytesPerPixel(format));
    const ptrdiff_t lineBytes = ptrdiff_t{to.width} * 4;
    const Scratch scratch(size_t(2 * lineBytes));
    if (!scratch.Bytes()) return false;
    const Rows lines = {scratch.Bytes(), lineBytes, to.width, 1};
    for (int32_t y = 0; y < words.height; ++y) {
        BestRowTable().Double[FormatRGB32](words.At(y), lines.At(0), lines.At(1), words.width);
        PackRows(lines, format, {to.At(2 * y), 0, to.width, 1});
        std::memcpy(to.At(2 * y + 1), to.At(2 * y), bytes);
    }
    return true;
}

}  // namespace

bool DoubleRows(const Rows& words, uint32_t format, const Rows& to) {
    const auto twice = BestRowTable().Double[format];
    if (!twice) return DoubleThroughWords(words, format, to);
    for (int32_t y = 0; y < words.height; ++y) twice(words.At(y), to.At(2 * y), to.At(2 * y + 1), words.width);
    return true;
}

}  // namespace qzcolor
