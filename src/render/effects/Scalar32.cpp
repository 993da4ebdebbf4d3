// The 32-bit path for coordinates that are linear along a row: everything but extreme values.
#include <algorithm>
#include <array>
#include <utility>

#include "src/render/effects/Blur32.h"
#include "src/render/effects/Fade32.h"
#include "src/render/effects/PassTable.h"

namespace tdkviz {

namespace {

constexpr int kPixelBytes = 4;
constexpr int32_t kBlock = 8;  // pixels that are done together where the source runs on without a jump

template <int kKernel, bool kClamp, bool kFade>
class Pass {
public:
    explicit Pass(const EffectPass& pass) : pass_(pass), range_(pass), fade_(pass) {}

    void Run() {
        // Source positions in 1/256 pixel: a column steps by this much.
        stepX_ = kOffsetUnit - WholePixels(pass_.zoomX);
        stepY_ = WholePixels(pass_.rotate);
        uint8_t* row = pass_.destination;
        for (int32_t y = 0; y < pass_.height; ++y) {
            Row(y, row);
            row += static_cast<ptrdiff_t>(pass_.width) * kPixelBytes;
        }
    }

private:
    void Row(int32_t y, uint8_t* out) const {
        const int32_t u = pass_.width >> 1, v = (pass_.height >> 1) - y;
        int32_t atX = u * WholePixels(pass_.zoomX) + pass_.jitterX + v * WholePixels(pass_.rotate) + pass_.slideX;
        int32_t atY = y * kOffsetUnit - u * WholePixels(pass_.rotate) + pass_.jitterY + v * WholePixels(pass_.zoomY) +
                      pass_.slideY;
        for (int32_t left = pass_.width; left > 0; left -= kBlock) {
            if (left < kBlock || !Block(atX, atY, out)) Pixels(atX, atY, std::min(left, kBlock), out);
            atX += kBlock * stepX_;
            atY += kBlock * stepY_;
            out += kBlock * kPixelBytes;
        }
    }

    // A block whose source pixels lie side by side. Positions are linear, so the two ends tell.
    bool Block(int32_t atX, int32_t atY, uint8_t* out) const {
        const int32_t firstX = WholePixels(atX), lastX = WholePixels(atX + (kBlock - 1) * stepX_);
        const int32_t firstY = WholePixels(atY), lastY = WholePixels(atY + (kBlock - 1) * stepY_);
        if (lastX - firstX != kBlock - 1 || firstY != lastY) return false;
        if (!range_.Holds(firstX, firstY) || lastX > range_.highX) return false;
        const uint8_t* centre = At(firstX, firstY);
        uint32_t pixels[kBlock];
        for (int32_t i = 0; i < kBlock; ++i) pixels[i] = Shade(centre + i * kPixelBytes);
        std::memcpy(out, pixels, sizeof(pixels));
        return true;
    }

    void Pixels(int32_t atX, int32_t atY, int32_t count, uint8_t* out) const {
        for (; count > 0; --count) {
            StorePixel(out, Pixel(WholePixels(atX), WholePixels(atY)));
            atX += stepX_;
            atY += stepY_;
            out += kPixelBytes;
        }
    }

    uint32_t Pixel(int32_t x, int32_t y) const {
        if constexpr (kClamp) return Shade(At(range_.LimitX(x), range_.LimitY(y)));
        return range_.Holds(x, y) ? Shade(At(x, y)) : pass_.fadeColor;
    }

    const uint8_t* At(int32_t x, int32_t y) const {
        return pass_.source + y * pass_.sourcePitch + static_cast<ptrdiff_t>(x) * kPixelBytes;
    }
    uint32_t Shade(const uint8_t* centre) const {
        return fade_(Blur32<kKernel>(InnerReader{centre, kPixelBytes, pass_.sourcePitch}));
    }

    const EffectPass pass_;
    const SourceRange range_;
    const Fade32<kFade> fade_;
    int32_t stepX_ = 0, stepY_ = 0;
};

template <int kKernel, bool kClamp, bool kFade>
void Run(const EffectPass& pass) {
    Pass<kKernel, kClamp, kFade>(pass).Run();
}

// By kernel, then by clamp + 2 x fade.
using Variants = std::array<EffectPassFunction, 4>;
template <int... kKernels>
constexpr auto MakeTable(std::integer_sequence<int, kKernels...>) {
    return std::array<Variants, sizeof...(kKernels)>{Variants{Run<kKernels, false, false>, Run<kKernels, true, false>,
                                                              Run<kKernels, false, true>,
                                                              Run<kKernels, true, true>}...};
}
constexpr auto kPasses = MakeTable(std::make_integer_sequence<int, kKernelCount>());

}  // namespace

EffectPassFunction FindScalar32(const EffectPass& pass) {
    if (pass.bytesPerPixel != kPixelBytes || !pass.HasInnerPixels() || !pass.FadeIsBlend() || !pass.IsLinear()) {
        return nullptr;
    }
    return kPasses[static_cast<size_t>(pass.kernel)][(pass.clamp ? 1 : 0) + (pass.fade != 0 ? 2 : 0)];
}

}  // namespace tdkviz
