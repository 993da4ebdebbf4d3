// Which pixels a straight line covers.
#pragma once

#include <windef.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace tdkp {

// Coordinates of lines are cut to this, as documented; products of two of them fit 64 bits.
constexpr LONG kMaxCoordinate = (1 << 27) - 1;

// One pixel for each step along the longer axis, the nearest to the exact line across it; halfway between two
// pixels the upper (left) one. Both directions of a line give the same pixels. The last pixel isn't counted.
class LinePath {
public:
    LinePath(POINT from, POINT to) : from_(Cut(from)), to_(Cut(to)) {
        const int64_t dx = int64_t{to_.x} - from_.x;
        const int64_t dy = int64_t{to_.y} - from_.y;
        wide_ = std::abs(dx) >= std::abs(dy);
        const int64_t major = wide_ ? dx : dy;
        minor_ = wide_ ? dy : dx;
        step_ = major < 0 ? -1 : 1;
        count_ = std::abs(major);
    }

    int64_t Count() const { return count_; }

    POINT At(int64_t i) const {
        const LONG along = static_cast<LONG>((wide_ ? from_.x : from_.y) + i * step_);
        const LONG across = static_cast<LONG>((wide_ ? from_.y : from_.x) + (count_ == 0 ? 0 : RoundedDown(i)));
        return wide_ ? POINT{along, across} : POINT{across, along};
    }

    // The steps [first, last) that may lie in a rectangle, by the longer axis.
    void Range(const RECT& rect, int64_t* first, int64_t* last) const {
        const int64_t start = wide_ ? from_.x : from_.y;
        const int64_t low = wide_ ? rect.left : rect.top;
        const int64_t high = wide_ ? rect.right : rect.bottom;
        *first = std::clamp<int64_t>(step_ > 0 ? low - start : start - high + 1, 0, count_);
        *last = std::clamp<int64_t>(step_ > 0 ? high - start : start - low + 1, *first, count_);
    }

private:
    static POINT Cut(POINT point) {
        return {std::clamp(point.x, -kMaxCoordinate, kMaxCoordinate),
                std::clamp(point.y, -kMaxCoordinate, kMaxCoordinate)};
    }

    // i x minor / count to the nearest whole number, halves down.
    int64_t RoundedDown(int64_t i) const {
        const int64_t numerator = 2 * i * minor_ - count_;
        const int64_t denominator = 2 * count_;
        const int64_t quotient = numerator / denominator;
        return quotient + (numerator % denominator > 0 ? 1 : 0);
    }

    const POINT from_;
    const POINT to_;
    bool wide_;
    int64_t minor_;
    int64_t step_;
    int64_t count_;
};

}  // namespace tdkp
