#include "companions/qzcolor/YuvScale.h"

#include <cstring>

#include <libyuv.h>

#include "companions/qzcolor/Scratch.h"

namespace qzcolor {

namespace {

constexpr int kGrey = 128;

bool IsEmpty(const Rows& rows) {
    return rows.width < 1 || rows.height < 1;
}

void ScalePlane(const Rows& from, const Rows& to) {
    if (IsEmpty(to)) return;
    if (IsEmpty(from)) {
        for (int32_t y = 0; y < to.height; ++y) std::memset(to.At(y), kGrey, size_t(to.width));
        return;
    }
    // libyuv wants rows in the order of memory, and a negative height where the two have them in different orders.
    const Rows source = from.step < 0 ? from.Reversed() : from, made = to.step < 0 ? to.Reversed() : to;
    const bool turned = (from.step < 0) != (to.step < 0);
    libyuv::ScalePlane(source.first, static_cast<int>(source.step), source.width,
                       turned ? -source.height : source.height, made.first, static_cast<int>(made.step), made.width,
                       made.height, libyuv::kFilterBilinear);
}

// Luma and the two colours of every second pixel, of a picture whose pixels lie in pairs.
struct PairPlanes {
    PairPlanes(uint8_t* memory, int32_t width, int32_t height)
        : half((width + 1) / 2),
          luma{memory, width, width, height},
          colors{{memory + Area(width, height), half, half, height},
                 {memory + Area(width, height) + Area(half, height), half, half, height}} {}
    static size_t Area(int32_t width, int32_t height) { return size_t(width) * size_t(height); }
    static size_t Bytes(const Rows& pixels) {
        return Area(pixels.width, pixels.height) + 2 * Area((pixels.width + 1) / 2, pixels.height);
    }

    const int32_t half;
    const Rows luma, colors[2];
};

void Split(const Rows& pairs, int lumaPlace, const PairPlanes& planes) {
    for (int32_t y = 0; y < pairs.height; ++y) {
        const uint8_t* from = pairs.At(y);
        uint8_t* const colors[2] = {planes.colors[0].At(y), planes.colors[1].At(y)};
        for (int32_t x = 0; x < pairs.width; ++x, from += 2) {
            planes.luma.At(y)[x] = from[lumaPlace];
            colors[x % 2][x / 2] = from[1 - lumaPlace];
        }
        // An odd last pixel has half of its colour from the pair before.
        if (pairs.width % 2) colors[1][planes.half - 1] = planes.half > 1 ? colors[1][planes.half - 2] : kGrey;
    }
}

void Join(const PairPlanes& planes, int lumaPlace, const Rows& pairs) {
    for (int32_t y = 0; y < pairs.height; ++y) {
        uint8_t* to = pairs.At(y);
        for (int32_t x = 0; x < pairs.width; ++x, to += 2) {
            to[lumaPlace] = planes.luma.At(y)[x];
            to[1 - lumaPlace] = planes.colors[x % 2].At(y)[x / 2];
        }
    }
}

bool ScalePairs(const Rows& from, int lumaPlace, const Rows& to) {
    const size_t fromBytes = PairPlanes::Bytes(from);
    const Scratch scratch(fromBytes + PairPlanes::Bytes(to));
    if (!scratch.Bytes()) return false;
    const PairPlanes source(scratch.Bytes(), from.width, from.height);
    const PairPlanes made(scratch.Bytes() + fromBytes, to.width, to.height);
    Split(from, lumaPlace, source);
    ScalePlane(source.luma, made.luma);
    for (int i = 0; i < 2; ++i) ScalePlane(source.colors[i], made.colors[i]);
    Join(made, lumaPlace, to);
    return true;
}

}  // namespace

bool ScaleYuv(uint32_t format, const Image& from, const Image& to) {
    if (format == FormatYUY2 || format == FormatUYVY)
        return ScalePairs(from.Pixels(2), format == FormatYUY2 ? 0 : 1, to.Pixels(2));
    ScalePlane(from.Pixels(1), to.Pixels(1));
    for (int i = 0; i < 2; ++i) ScalePlane(from.HalfPlane(i), to.HalfPlane(i));
    return true;
}

}  // namespace qzcolor
