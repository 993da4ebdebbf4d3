#include "src/settings/EffectScale.h"

#include <algorithm>

namespace tdkviz {

namespace {

constexpr int64_t kSnapPixels = 3;
constexpr int64_t kPixelsPerMark = 4;

}  // namespace

int32_t EffectScale::DistanceOf(int32_t value) const {
    const int64_t range = int64_t{Max} - Min;
    return static_cast<int32_t>(Span * (int64_t{value} - Min) / range);
}

int32_t EffectScale::ValueAt(int32_t distance, uint32_t snaps) const {
    // A control too small for a scale has nothing to drag along.
    if (Span < 1) return Min;
    const int64_t range = int64_t{Max} - Min;
    // Half a step on, so that the value changes half way between two marks.
    int64_t value = (Span / range / 2 + distance) * range / Span + Min;
    const int64_t zone = range * kSnapPixels / Span;
    const auto snapTo = [&](uint32_t snap, int64_t mark) {
        if ((snaps & snap) && value >= mark - zone && value <= mark + zone) value = mark;
    };
    snapTo(kSnapCentre, Min + range / 2);
    snapTo(kSnapMinimum, Min);
    snapTo(kSnapMaximum, Max);
    return static_cast<int32_t>(std::clamp<int64_t>(value, Min, Max));
}

bool EffectScale::HasMarkPerValue() const {
    return int64_t{Max} - Min <= Span / kPixelsPerMark;
}

}  // namespace tdkviz
