// The byte path: frames of any number of bytes a pixel, each byte by itself.
#include <array>
#include <utility>

#include "src/render/effects/FadeBytes.h"
#include "src/render/effects/PassTable.h"

namespace tdkviz {

namespace {

constexpr uint32_t kThird = 21845, kFifth = 13107, kNinth = 7281;  // 65536 / 3, 5, 9 rounded down

// Kernel kKernel on the byte at `byte` of a pixel and of its neighbours.
template <int kKernel, typename Reader>
uint8_t BlurByte(const Reader& at, int byte) {
    const auto p = [&](int dx, int dy) { return uint32_t{at(dx, dy)[byte]}; };
    const auto cross = [&p] { return p(0, -1) + p(0, 1) + p(1, 0) + p(-1, 0); };
    const auto corners = [&p] { return p(-1, -1) + p(1, -1) + p(-1, 1) + p(1, 1); };
    const uint32_t c = p(0, 0);
    const auto result = [&]() -> uint32_t {
        if constexpr (kKernel == 0) return c;
        if constexpr (kKernel == 1) return (12 * c + cross() + 15) >> 4;
        if constexpr (kKernel == 2) return (4 * c + cross() + 7) >> 3;
        if constexpr (kKernel == 3) return (7 * p(-1, -1) + c + cross() + corners() + 15) >> 4;
        if constexpr (kKernel == 4) return ((cross() + p(-1, -1) + 4) * kFifth) >> 16;
        if constexpr (kKernel == 5) return (cross() + 3) >> 2;
        if constexpr (kKernel == 6) return ((p(-1, -1) + c + p(1, 1) + 2) * kThird) >> 16;
        if constexpr (kKernel == 7) return ((p(1, -1) + c + p(-1, 1) + 2) * kThird) >> 16;
        if constexpr (kKernel == 8) return ((p(-1, 0) + c + p(1, 0) + 2) * kThird) >> 16;
        if constexpr (kKernel == 9) return ((p(0, -1) + c + p(0, 1) + 2) * kThird) >> 16;
        return ((c + cross() + corners() + 8) * kNinth) >> 16;
    };
    return static_cast<uint8_t>(result());
}

// The colour's bytes in the order of a pixel's: from the top. Pixels of more than four repeat them.
uint8_t ColorByte(uint32_t color, int byte) {
    return static_cast<uint8_t>(color >> (24 - 8 * (byte & 3)));
}

template <int kKernel, typename Reader>
void ShadePixel(const EffectPass& pass, const Reader& at, uint8_t* out) {
    for (int byte = 0; byte < pass.bytesPerPixel; ++byte) {
        const uint8_t blurred = BlurByte<kKernel>(at, byte);
        out[byte] = pass.fade == 0 ? blurred : FadeByte(blurred, ColorByte(pass.fadeColor, byte), pass.fade);
    }
}

template <int kKernel>
void Run(const EffectPass& pass) {
    const SourceRange inner(pass), all = SourceRange::ForClamp(pass);
    uint8_t* out = pass.destination;
    for (int32_t y = 0; y < pass.height; ++y) {
        RowWalk walk(pass, y);
        for (int32_t x = 0; x < pass.width; ++x, walk.Next(), out += pass.bytesPerPixel) {
            const int32_t limitedX = all.LimitX(walk.X()), limitedY = all.LimitY(walk.Y());
            if (inner.Holds(walk.X(), walk.Y()) || (pass.clamp && pass.HasInnerPixels())) {
                const uint8_t* centre =
                    pass.source + limitedY * pass.sourcePitch + static_cast<ptrdiff_t>(limitedX) * pass.bytesPerPixel;
                ShadePixel<kKernel>(pass, InnerReader{centre, pass.bytesPerPixel, pass.sourcePitch}, out);
            } else if (pass.clamp) {
                ShadePixel<kKernel>(pass, EdgeReader{pass, limitedX, limitedY}, out);
            } else {
                for (int byte = 0; byte < pass.bytesPerPixel; ++byte) out[byte] = ColorByte(pass.fadeColor, byte);
            }
        }
    }
}

template <int... kKernels>
constexpr auto MakeTable(std::integer_sequence<int, kKernels...>) {
    return std::array<EffectPassFunction, sizeof...(kKernels)>{Run<kKernels>...};
}
constexpr auto kPasses = MakeTable(std::make_integer_sequence<int, kKernelCount>());

}  // namespace

EffectPassFunction FindBytePath(const EffectPass& pass) {
    return kPasses[static_cast<size_t>(pass.kernel)];
}

}  // namespace tdkviz
