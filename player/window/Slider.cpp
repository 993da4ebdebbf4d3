#include "player/window/Slider.h"

#include <algorithm>
#include <cmath>

#include "player/window/StripColors.h"

namespace tdkplay {
namespace {

constexpr int kHalfLine = 2;  // pixels, half the bar's height
constexpr int kHalfThumb = 6;

}  // namespace

int Slider::ThumbX() const {
    return static_cast<int>(std::lround(place_.left + value_ * std::max(place_.right - place_.left, 0)));
}

bool Slider::SetValue(double part) {
    if (isDragged_) return false;
    const int before = ThumbX();
    value_ = std::clamp(part, 0.0, 1.0);
    return ThumbX() != before;
}

void Slider::Drag(int x) {
    isDragged_ = true;
    const double width = std::max(place_.right - place_.left, 1);
    value_ = std::clamp((x - place_.left) / width, 0.0, 1.0);
}

void Slider::Paint(Canvas& canvas, bool isHot) const {
    const int middle = (place_.top + place_.bottom) / 2;
    const int thumb = ThumbX();
    const RECT whole = {place_.left, middle - kHalfLine, place_.right, middle + kHalfLine};
    canvas.FillRounded(whole, kHalfLine, kLineColor);
    if (thumb > place_.left)
        canvas.FillRounded({place_.left, whole.top, std::max<LONG>(thumb, place_.left + 2 * kHalfLine), whole.bottom},
                           kHalfLine, kAccentColor);
    if (!isHot && !isDragged_) return;
    canvas.FillRounded({thumb - kHalfThumb, middle - kHalfThumb, thumb + kHalfThumb, middle + kHalfThumb}, kHalfThumb,
                       kBrightColor);
}

}  // namespace tdkplay
