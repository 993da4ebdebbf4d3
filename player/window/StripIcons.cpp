#include "player/window/StripIcons.h"

#include <cmath>

namespace tdkplay {
namespace {

// Paints `inside(x, y)`, with 0, 0 in the middle of the place.
template <typename Shape>
void PaintAround(Canvas& canvas, const RECT& place, COLORREF color, const Shape& inside) {
    const int middleX = (place.left + place.right) / 2;
    const int middleY = (place.top + place.bottom) / 2;
    canvas.FillShape(place, color, [&](double x, double y) { return inside(x - middleX, y - middleY); });
}

bool IsInBox(double x, double y, double left, double right, double halfHeight) {
    return x >= left && x <= right && std::abs(y) <= halfHeight;
}

// A triangle that points to the right, from `left` to its tip.
bool IsInTriangle(double x, double y, double left, double tip, double halfHeight) {
    return x >= left && x <= tip && std::abs(y) <= halfHeight * (tip - x) / (tip - left);
}

bool IsOnArc(double x, double y, double radius) {
    constexpr double kHalfWidth = 0.7;
    return x > 0 && std::abs(std::hypot(x, y) - radius) <= kHalfWidth && std::abs(y) <= x;
}

}  // namespace

void PaintPlaySign(Canvas& canvas, const RECT& place, COLORREF color) {
    PaintAround(canvas, place, color, [](double x, double y) { return IsInTriangle(x, y, -5, 7, 7); });
}

void PaintPauseSign(Canvas& canvas, const RECT& place, COLORREF color) {
    PaintAround(canvas, place, color,
                [](double x, double y) { return IsInBox(x, y, -5, -2, 6.5) || IsInBox(x, y, 2, 5, 6.5); });
}

void PaintStepSign(Canvas& canvas, const RECT& place, COLORREF color, int direction) {
    PaintAround(canvas, place, color, [direction](double x, double y) {
        return IsInTriangle(x * direction, y, -5, 3, 5) || IsInBox(x * direction, y, 3, 5, 5);
    });
}

void PaintVolumeSign(Canvas& canvas, const RECT& place, COLORREF color, int volume) {
    constexpr int kLoud = 50;
    PaintAround(canvas, place, color, [volume](double x, double y) {
        const bool isHorn = IsInBox(x, y, -6, -3, 2) || (x >= -3 && x <= 0.5 && std::abs(y) <= 2 + (x + 3) * 0.85);
        return isHorn || (volume > 0 && IsOnArc(x + 0.5, y, 3.5)) || (volume > kLoud && IsOnArc(x + 0.5, y, 6.2));
    });
}

}  // namespace tdkplay
