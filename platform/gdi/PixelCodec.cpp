#include "platform/gdi/PixelCodec.h"

#include <limits>

namespace tdkp {
namespace {

// Calls the function object's template operator with the codec of a format; gives `none` for kNone.
template <typename Function>
uint32_t WithCodec(PixelFormat format, Function function) {
    switch (format) {
        case PixelFormat::kNone:
            return 0;
        case PixelFormat::kMono:
            return function(PixelCodec<PixelFormat::kMono>());
        case PixelFormat::kIndexed8:
            return function(PixelCodec<PixelFormat::kIndexed8>());
        case PixelFormat::kRgb555:
            return function(PixelCodec<PixelFormat::kRgb555>());
        case PixelFormat::kRgb565:
            return function(PixelCodec<PixelFormat::kRgb565>());
        case PixelFormat::kRgb24:
            return function(PixelCodec<PixelFormat::kRgb24>());
        case PixelFormat::kRgb32:
            return function(PixelCodec<PixelFormat::kRgb32>());
        case PixelFormat::kBgr32:
            return function(PixelCodec<PixelFormat::kBgr32>());
    }
    return 0;
}

int SquaredDistance(uint32_t a, uint32_t b) {
    const int red = static_cast<int>((a >> 16) & 0xFF) - static_cast<int>((b >> 16) & 0xFF);
    const int green = static_cast<int>((a >> 8) & 0xFF) - static_cast<int>((b >> 8) & 0xFF);
    const int blue = static_cast<int>(a & 0xFF) - static_cast<int>(b & 0xFF);
    return red * red + green * green + blue * blue;
}

}  // namespace

uint32_t NearestEntry(const uint32_t* palette, int entries, uint32_t color) {
    int best = 0;
    int bestDistance = std::numeric_limits<int>::max();
    for (int i = 0; i < entries && bestDistance != 0; ++i) {
        const int distance = SquaredDistance(palette[i], color);
        if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
        }
    }
    return static_cast<uint32_t>(best);
}

uint32_t ReadColor(const Raster& raster, int x, int y) {
    return WithCodec(raster.format,
                     [&](auto codec) { return codec.Decode(codec.ReadRaw(RowOf(raster, y), x), raster.palette); });
}

void WriteRaw(const Raster& raster, int x, int y, uint32_t raw) {
    WithCodec(raster.format, [&](auto codec) {
        codec.WriteRaw(RowOf(raster, y), x, raw);
        return 0u;
    });
}

uint32_t EncodeColor(const Raster& raster, uint32_t color) {
    return WithCodec(raster.format, [&](auto codec) { return codec.Encode(color, raster.palette); });
}

uint32_t DecodeRaw(const Raster& raster, uint32_t raw) {
    return WithCodec(raster.format, [&](auto codec) { return codec.Decode(raw, raster.palette); });
}

}  // namespace tdkp
