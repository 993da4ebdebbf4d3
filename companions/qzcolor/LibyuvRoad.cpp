#include "companions/qzcolor/LibyuvRoad.h"

#include <cstring>

#include <libyuv.h>

#include "companions/qzcolor/ExactRoad.h"

namespace qzcolor {

namespace {

constexpr int32_t kEven = ~1;

int Step(const Rows& rows) {
    return static_cast<int>(rows.step);
}

// All converters of libyuv have this form.
using Packer = int (*)(const uint8_t* from, int fromStep, uint8_t* to, int toStep, int width, int height);

void Run(Packer packer, const Rows& from, const Rows& to) {
    packer(from.first, Step(from), to.first, Step(to), from.width, from.height);
}

Rows Part(const Rows& rows, int32_t bytesPerPixel, int32_t x, int32_t y, int32_t width, int32_t height) {
    return {rows.At(y) + ptrdiff_t{x} * bytesPerPixel, rows.step, width, height};
}

void PackPlanes(const Rows& words, bool vFirst, const Image& image) {
    const Rows luma = image.Pixels(1);
    const Rows u = image.HalfPlane(vFirst ? 1 : 0), v = image.HalfPlane(vFirst ? 0 : 1);
    const int32_t width = words.width & kEven, height = words.height & kEven;
    libyuv::ARGBToI420(words.first, Step(words), luma.first, Step(luma), u.first, Step(u), v.first, Step(v), width,
                       height);
    // What the pairs leave over.
    Run(libyuv::ARGBToI400, Part(words, 4, width, 0, words.width - width, words.height),
        Part(luma, 1, width, 0, words.width - width, words.height));
    Run(libyuv::ARGBToI400, Part(words, 4, 0, height, width, words.height - height),
        Part(luma, 1, 0, height, width, words.height - height));
}

void PackPairs(const Rows& words, Packer packer, const Rows& to) {
    const int32_t even = words.width & kEven;
    Run(packer, Part(words, 4, 0, 0, even, words.height), to);
    if (even == words.width) return;
    // The first half of a pair in which the last pixel stands twice.
    for (int32_t y = 0; y < words.height; ++y) {
        uint8_t pixels[8], pair[4];
        std::memcpy(pixels, words.At(y) + ptrdiff_t{even} * 4, 4);
        std::memcpy(pixels + 4, pixels, 4);
        packer(pixels, sizeof(pixels), pair, sizeof(pair), 2, 1);
        std::memcpy(to.At(y) + ptrdiff_t{even} * 2, pair, 2);
    }
}

}  // namespace

void Unpack(const Rows& from, uint32_t format, const Rows& words) {
    switch (format) {
        case FormatRGB24:
            return Run(libyuv::RGB24ToARGB, from, words);
        case FormatBGR24:
            return Run(libyuv::RAWToARGB, from, words);
        case FormatRGB565:
        case FormatBGR565:
            Run(libyuv::RGB565ToARGB, from, words);
            break;
        case FormatRGB555:
        case FormatBGR555:
            Run(libyuv::ARGB1555ToARGB, from, words);
            break;
        default:
            CopyRows(from, words, 4);
            break;
    }
    const bool redIsLow = format == FormatBGR565 || format == FormatBGR555 || format == FormatBGR32;
    if (redIsLow) PackRows(words, FormatBGR32, words);
}

void PackBytes(const Rows& words, uint32_t format, const Rows& to) {
    const Packer packer = format == FormatRGB24   ? libyuv::ARGBToRGB24
                          : format == FormatBGR24 ? libyuv::ARGBToRAW
                                                  : libyuv::ARGBToABGR;
    Run(packer, words, to);
}

void PackYuv(const Rows& words, uint32_t format, const Image& to) {
    if (format == FormatYUY2 || format == FormatUYVY) {
        PackPairs(words, format == FormatYUY2 ? libyuv::ARGBToYUY2 : libyuv::ARGBToUYVY, to.Pixels(2));
    } else {
        PackPlanes(words, format == FormatYV12, to);
    }
}

}  // namespace qzcolor
