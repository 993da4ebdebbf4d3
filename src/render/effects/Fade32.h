// The fade of one 32-bit pixel, for weights that blend.
#pragma once

#include <cstdint>

#include "src/render/effects/EffectPass.h"

namespace tdkviz {
namespace {  // see Blur32.h

// Two bytes in each half: both fit 16 bits as long as the weights add up to 256.
template <bool kFade>
class Fade32 {
public:
    explicit Fade32(const EffectPass& pass)
        : keep_(static_cast<uint32_t>(kOffsetUnit - pass.fade)),
          even_((pass.fadeColor & kEven) * static_cast<uint32_t>(pass.fade) + kRound),
          odd_(((pass.fadeColor >> 8) & kEven) * static_cast<uint32_t>(pass.fade) + kRound) {}

    uint32_t operator()(uint32_t pixel) const {
        if constexpr (!kFade) return pixel;
        return ((((pixel & kEven) * keep_ + even_) >> 8) & kEven) | ((((pixel >> 8) & kEven) * keep_ + odd_) & ~kEven);
    }

private:
    static constexpr uint32_t kEven = 0x00FF00FF, kRound = 0x00800080;
    const uint32_t keep_, even_, odd_;
};

}  // namespace
}  // namespace tdkviz
