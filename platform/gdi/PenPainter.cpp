#include "platform/gdi/PenPainter.h"

#include <algorithm>

#include "platform/gdi/LinePath.h"
#include "platform/gdi/RasterBlit.h"
#include "platform/gdi/Rects.h"

namespace tdkp {
namespace {

constexpr int kMaxPenWidth = 1024;

// Lengths of strokes and gaps in turn, in pixels.
struct DashPattern {
    int lengths[6];
    int count;
    int total;
};

constexpr DashPattern kPatterns[] = {
    {{1, 0}, 2, 1},               // PS_SOLID
    {{18, 6}, 2, 24},             // PS_DASH
    {{3, 3}, 2, 6},               // PS_DOT
    {{9, 6, 3, 6}, 4, 24},        // PS_DASHDOT
    {{9, 3, 3, 3, 3, 3}, 6, 24},  // PS_DASHDOTDOT
};

bool IsStroke(const DashPattern& pattern, int at) {
    for (int i = 0; i < pattern.count; ++i) {
        if (at < pattern.lengths[i]) return i % 2 == 0;
        at -= pattern.lengths[i];
    }
    return true;
}

}  // namespace

PenPainter::PenPainter(const DeviceContext& dc, DrawTarget& target, int stylePhase)
    : target_(target),
      draws_(dc.pen->style != PS_NULL && target.ClipCount() > 0),
      width_(std::min(dc.pen->width, kMaxPenWidth)),
      // Only thin pens have a pattern.
      style_(width_ > 1 ? UINT{PS_SOLID} : dc.pen->style),
      opaque_(dc.bkMode == OPAQUE),
      hull_(target.ClipHull()),
      phase_(stylePhase) {
    if (!draws_) return;
    color_ = EncodeColor(target.Pixels(), ColorFromRef(dc.pen->color));
    gapColor_ = EncodeColor(target.Pixels(), ColorFromRef(dc.bkColor));
}

// What the dots of the pen around the pixels of an area cover.
RECT PenPainter::Dots(const RECT& area) const {
    const int before = width_ / 2;
    return {ClampToLong(int64_t{area.left} - before), ClampToLong(int64_t{area.top} - before),
            ClampToLong(int64_t{area.right} + width_ - 1 - before),
            ClampToLong(int64_t{area.bottom} + width_ - 1 - before)};
}

void PenPainter::Plot(POINT point, uint32_t raw) {
    if (width_ == 1) {
        if (target_.IsVisible(point.x, point.y)) WriteRaw(target_.Pixels(), point.x, point.y, raw);
        return;
    }
    const RECT dot = Dots({point.x, point.y, point.x + 1, point.y + 1});
    for (int i = 0; i < target_.ClipCount(); ++i) {
        const RECT visible = Intersect(dot, target_.Clips()[i]);
        if (!IsEmpty(visible)) FillPixels(target_.Pixels(), visible, raw);
    }
}

void PenPainter::PlotStyled(POINT point, int64_t at) {
    const DashPattern& pattern = kPatterns[style_];
    if (IsStroke(pattern, static_cast<int>((at + phase_) % pattern.total)))
        Plot(point, color_);
    else if (opaque_)
        Plot(point, gapColor_);
}

void PenPainter::Line(POINT from, POINT to) {
    if (!draws_) return;
    const LinePath path(from, to);
    int64_t first, last;
    path.Range(Grow(hull_, width_), &first, &last);
    for (int64_t i = first; i < last; ++i) {
        if (style_ == PS_SOLID)
            Plot(path.At(i), color_);
        else
            PlotStyled(path.At(i), i);
    }
    if (width_ > 1) Plot(to, color_);
    phase_ = static_cast<int>((path.Count() + phase_) % kPatterns[style_].total);
    const RECT ends = Ordered({from.x, from.y, to.x, to.y});
    target_.Damage(
        Dots({ends.left, ends.top, ClampToLong(int64_t{ends.right} + 1), ClampToLong(int64_t{ends.bottom} + 1)}));
}

}  // namespace tdkp
