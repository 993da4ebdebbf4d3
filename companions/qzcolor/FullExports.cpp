#include <algorithm>

#include <libyuv.h>

#include "companions/qzcolor/Conversion.h"
#include "companions/qzcolor/Exports.h"

namespace {

constexpr GUID kLibraryId = {0x5B0E7C52, 0x93A4, 0x4D1F, {0x8C, 0x26, 0x71, 0xE9, 0x0D, 0x3A, 0xB4, 0x68}};
constexpr uint32_t kCubeSide = 6;
constexpr uint32_t kCubeEntries = kCubeSide * kCubeSide * kCubeSide;
constexpr uint32_t kMaxEntries = 256;

uint8_t CubeLevel(uint32_t step) {
    return static_cast<uint8_t>(step % kCubeSide * 255 / (kCubeSide - 1));
}

constexpr uint32_t Byte(int32_t value) {
    return static_cast<uint32_t>(std::clamp(value, 0, 255));
}

bool IsEvenSize(int32_t width, int32_t height) {
    return width > 0 && height > 0 && ((width | height) & 1) == 0;
}

// The planes of a picture without padding.
template <typename Pixels>
struct Planes {
    Planes(Pixels* pixels, int32_t width, int32_t height)
        : luma(pixels),
          u(luma + ptrdiff_t{width} * height),
          v(u + ptrdiff_t{width} * height / 4),
          alpha(v + ptrdiff_t{width} * height / 4) {}
    Pixels *luma, *u, *v, *alpha;
};

}  // namespace

int32_t GetCVColorGUID(GUID* id) {
    if (!id) return E_INVALIDARG;
    *id = kLibraryId;
    return S_OK;
}

int32_t GetColorConverter2(uint32_t from, uint32_t to, ColorConverterFunction* converter) {
    if (!converter) return E_INVALIDARG;
    *converter = qzcolor::FindConverter(from, to);
    return *converter ? S_OK : E_NOTIMPL;
}

uint32_t ScanCompatibleColorFormats(uint32_t from, uint32_t* formats, uint32_t capacity) {
    return qzcolor::FindTargets(from, false, formats, capacity);
}

uint32_t SuggestRGB8Palette(qzcolor::PaletteEntry* entries, uint32_t capacity) {
    for (uint32_t i = 0; entries && i < std::min(capacity, kCubeEntries); ++i) {
        entries[i] = {CubeLevel(i / (kCubeSide * kCubeSide)), CubeLevel(i / kCubeSide), CubeLevel(i), 0};
    }
    return kCubeEntries;
}

int32_t SetRGB8Palette(const qzcolor::PaletteEntry* entries, uint32_t count) {
    if (!entries || count == 0 || count > kMaxEntries) return E_INVALIDARG;
    return qzcolor::StorePalette(entries, count) ? S_OK : E_OUTOFMEMORY;
}

uint32_t ConvertRGBtoYUV(uint32_t color) {
    const auto red = static_cast<int32_t>(color >> 16 & 0xFF), green = static_cast<int32_t>(color >> 8 & 0xFF),
               blue = static_cast<int32_t>(color & 0xFF);
    const int32_t y = ((66 * red + 129 * green + 25 * blue + 128) >> 8) + 16;
    const int32_t u = ((-38 * red - 74 * green + 112 * blue + 128) >> 8) + 128;
    const int32_t v = ((112 * red - 94 * green - 18 * blue + 128) >> 8) + 128;
    return Byte(y) << 16 | Byte(u) << 8 | Byte(v);
}

uint32_t ConvertYUVtoRGB(uint32_t color) {
    const int32_t y = 298 * (static_cast<int32_t>(color >> 16 & 0xFF) - 16) + 128;
    const int32_t u = static_cast<int32_t>(color >> 8 & 0xFF) - 128, v = static_cast<int32_t>(color & 0xFF) - 128;
    return Byte((y + 409 * v) >> 8) << 16 | Byte((y - 100 * u - 208 * v) >> 8) << 8 | Byte((y + 516 * u) >> 8);
}

int32_t ConvertRGB24toXRGB(void* words, int32_t wordPitch, const void* triples, int32_t triplePitch, int32_t width,
                           int32_t height) {
    const auto source = static_cast<uint8_t*>(const_cast<void*>(triples));
    return qzcolor::Convert(FormatRGB24, {source, width, height, triplePitch, 0, 0, width, height}, FormatRGB32,
                            {static_cast<uint8_t*>(words), width, height, wordPitch, 0, 0, width, height});
}

int32_t I420andYUVA(uint8_t* below, const uint8_t* above, int32_t width, int32_t height) {
    if (!below || !above || !IsEvenSize(width, height)) return E_INVALIDARG;
    const Planes to(below, width, height);
    const Planes from(above, width, height);
    const int32_t half = width / 2;
    const int failed =
        libyuv::I420Blend(from.luma, width, from.u, half, from.v, half, to.luma, width, to.u, half, to.v, half,
                          from.alpha, width, to.luma, width, to.u, half, to.v, half, width, height);
    return failed ? E_OUTOFMEMORY : S_OK;
}

int32_t I420andI420toI420(const uint8_t* first, const uint8_t* second, uint8_t* mixed, int32_t width, int32_t height,
                          int32_t weight) {
    if (!first || !second || !mixed || !IsEvenSize(width, height) || weight < 0 || weight > 255) return E_INVALIDARG;
    const Planes a(first, width, height), b(second, width, height);
    const Planes to(mixed, width, height);
    const int32_t half = width / 2;
    libyuv::I420Interpolate(a.luma, width, a.u, half, a.v, half, b.luma, width, b.u, half, b.v, half, to.luma, width,
                            to.u, half, to.v, half, width, height, weight);
    return S_OK;
}
