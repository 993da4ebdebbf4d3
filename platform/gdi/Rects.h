// Arithmetic of rectangles; right and bottom edge are outside. Sums that leave 32 bits stop at the limit.
#pragma once

#include <windef.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "platform/gdi/Raster.h"

namespace tdkp {

constexpr LONG ClampToLong(int64_t value) {
    constexpr int64_t kMin = std::numeric_limits<LONG>::min();
    constexpr int64_t kMax = std::numeric_limits<LONG>::max();
    return static_cast<LONG>(std::clamp(value, kMin, kMax));
}

constexpr bool IsEmpty(const RECT& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

constexpr RECT Intersect(const RECT& a, const RECT& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

constexpr RECT Hull(const RECT& a, const RECT& b) {
    if (IsEmpty(a)) return b;
    if (IsEmpty(b)) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

constexpr RECT Shift(const RECT& rect, int64_t x, int64_t y) {
    return {ClampToLong(rect.left + x), ClampToLong(rect.top + y), ClampToLong(rect.right + x),
            ClampToLong(rect.bottom + y)};
}

// Larger by `margin` on each side.
constexpr RECT Grow(const RECT& rect, int64_t margin) {
    return {ClampToLong(rect.left - margin), ClampToLong(rect.top - margin), ClampToLong(rect.right + margin),
            ClampToLong(rect.bottom + margin)};
}

// The `count` pixels from `start` on. A negative count runs from `start` to the left (up).
constexpr void SetExtent(int start, int count, LONG* low, LONG* high) {
    const int64_t first = count >= 0 ? start : static_cast<int64_t>(start) + count + 1;
    *low = ClampToLong(first);
    *high = ClampToLong(first + (count >= 0 ? static_cast<int64_t>(count) : -static_cast<int64_t>(count)));
}

constexpr RECT RectFromExtents(int x, int y, int width, int height) {
    RECT rect = {0, 0, 0, 0};
    SetExtent(x, width, &rect.left, &rect.right);
    SetExtent(y, height, &rect.top, &rect.bottom);
    return rect;
}

// Left and right, top and bottom exchanged where they are the wrong way round.
constexpr RECT Ordered(const RECT& rect) {
    return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom), std::max(rect.left, rect.right),
            std::max(rect.top, rect.bottom)};
}

constexpr RECT BoundsOf(const Raster& raster) {
    return {0, 0, raster.width, raster.height};
}

}  // namespace tdkp
