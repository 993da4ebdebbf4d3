// The 32-bit path for what Scalar32 leaves: values whose arithmetic wraps around, weights that don't
// blend, frames without inner pixels. Correct first; no caller of the system comes here in normal use.
#include <array>
#include <utility>

#include "src/render/effects/Blur32.h"
#include "src/render/effects/FadeBytes.h"
#include "src/render/effects/PassTable.h"

namespace tdkviz {

namespace {

constexpr int kPixelBytes = 4;

uint32_t FadePixel(uint32_t pixel, uint32_t color, int32_t fade) {
    if (fade == 0) return pixel;
    uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const auto byte = static_cast<uint8_t>(pixel >> shift);
        result |= static_cast<uint32_t>(FadeByte(byte, static_cast<uint8_t>(color >> shift), fade)) << shift;
    }
    return result;
}

template <int kKernel>
void Run(const EffectPass& pass) {
    const SourceRange inner(pass), all = SourceRange::ForClamp(pass);
    uint8_t* out = pass.destination;
    for (int32_t y = 0; y < pass.height; ++y) {
        RowWalk walk(pass, y);
        for (int32_t x = 0; x < pass.width; ++x, walk.Next(), out += kPixelBytes) {
            const int32_t sourceX = walk.X(), sourceY = walk.Y();
            if (!pass.clamp && !inner.Holds(sourceX, sourceY)) {
                StorePixel(out, pass.fadeColor);
                continue;
            }
            const uint32_t pixel = Blur32<kKernel>(EdgeReader{pass, all.LimitX(sourceX), all.LimitY(sourceY)});
            StorePixel(out, FadePixel(pixel, pass.fadeColor, pass.fade));
        }
    }
}

template <int... kKernels>
constexpr auto MakeTable(std::integer_sequence<int, kKernels...>) {
    return std::array<EffectPassFunction, sizeof...(kKernels)>{Run<kKernels>...};
}
constexpr auto kPasses = MakeTable(std::make_integer_sequence<int, kKernelCount>());

}  // namespace

EffectPassFunction FindExact32(const EffectPass& pass) {
    return pass.bytesPerPixel == kPixelBytes ? kPasses[static_cast<size_t>(pass.kernel)] : nullptr;
}

}  // namespace tdkviz
