#include "src/render/effects/EffectPass.h"

namespace tdkviz {

bool EffectPass::IsLinear() const {
    constexpr int32_t kMaxSide = 1 << 16;
    constexpr int64_t kMaxSlide = int64_t{1} << 30;
    constexpr int64_t kMaxProduct = INT32_MAX;
    if (width > kMaxSide || height > kMaxSide) return false;
    const auto fits = [](int64_t value, int64_t factor, int64_t limit) {
        return value * factor <= limit && value * factor >= -limit;
    };
    return fits(zoomX, width, kMaxProduct) && fits(zoomY, height, kMaxProduct) && fits(rotate, width, kMaxProduct) &&
           fits(rotate, height, kMaxProduct) && fits(slideX, 1, kMaxSlide) && fits(slideY, 1, kMaxSlide);
}

}  // namespace tdkviz
