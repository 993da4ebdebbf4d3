#include "bench/ScalarPass.h"

#include <array>
#include <utility>

#include "src/render/effects/Blur32.h"
#include "src/render/effects/Fade32.h"

namespace {

using namespace tdkviz;

constexpr int kPixelBytes = 4;

template <int kKernel, bool kClamp, bool kFade>
void Run(const EffectPass& one) {
    const EffectPass pass = one;
    const SourceRange range(pass);
    const Fade32<kFade> fade(pass);
    const int32_t stepX = kOffsetUnit - WholePixels(pass.zoomX), stepY = WholePixels(pass.rotate);
    const int32_t u = pass.width >> 1;
    uint8_t* out = pass.destination;
    for (int32_t y = 0; y < pass.height; ++y) {
        const int32_t v = (pass.height >> 1) - y;
        int32_t atX = u * WholePixels(pass.zoomX) + pass.jitterX + v * stepY + pass.slideX;
        int32_t atY = y * kOffsetUnit - u * stepY + pass.jitterY + v * WholePixels(pass.zoomY) + pass.slideY;
        for (int32_t x = 0; x < pass.width; ++x, atX += stepX, atY += stepY, out += kPixelBytes) {
            int32_t sourceX = WholePixels(atX), sourceY = WholePixels(atY);
            if constexpr (kClamp) {
                sourceX = range.LimitX(sourceX);
                sourceY = range.LimitY(sourceY);
            } else if (!range.Holds(sourceX, sourceY)) {
                StorePixel(out, pass.fadeColor);
                continue;
            }
            const uint8_t* centre = pass.source + sourceY * pass.sourcePitch + sourceX * kPixelBytes;
            StorePixel(out, fade(Blur32<kKernel>(InnerReader{centre, kPixelBytes, pass.sourcePitch})));
        }
    }
}

using Variants = std::array<EffectPassFunction, 4>;
template <int... kKernels>
constexpr auto MakeTable(std::integer_sequence<int, kKernels...>) {
    return std::array<Variants, sizeof...(kKernels)>{Variants{Run<kKernels, false, false>, Run<kKernels, true, false>,
                                                              Run<kKernels, false, true>,
                                                              Run<kKernels, true, true>}...};
}
constexpr auto kPasses = MakeTable(std::make_integer_sequence<int, kKernelCount>());

}  // namespace

void ScalarPass(const EffectPass& pass) {
    kPasses[static_cast<size_t>(pass.kernel)][(pass.clamp ? 1 : 0) + (pass.fade != 0 ? 2 : 0)](pass);
}
