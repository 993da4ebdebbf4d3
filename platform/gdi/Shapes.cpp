// Lines and shapes.
#include <windows.h>

#include <algorithm>
#include <cmath>

#include "platform/gdi/DrawTarget.h"
#include "platform/gdi/ObjectTable.h"
#include "platform/gdi/PenPainter.h"
#include "platform/gdi/RasterBlit.h"
#include "platform/gdi/Rects.h"

namespace tdkp {
namespace {

void FillWithBrush(const DeviceContext& dc, DrawTarget& target, const RECT& rect) {
    if (dc.brush->hollow || target.ClipCount() == 0) return;
    BlitJob job;
    job.to = target.Pixels();
    job.toRect = rect;
    job.rop = kRopCopyPattern;
    job.pattern = EncodeColor(job.to, ColorFromRef(dc.brush->color));
    target.Damage(RunBlit(job, target.Clips(), target.ClipCount()));
}

// What a shape in this rectangle fills: a pen that draws nothing takes the right and bottom edge along.
RECT ShapeRect(const DeviceContext& dc, INT left, INT top, INT right, INT bottom) {
    RECT rect = Ordered({left, top, right, bottom});
    if (dc.pen->style == PS_NULL && !IsEmpty(rect)) {
        --rect.right;
        --rect.bottom;
    }
    return rect;
}

RECT Inside(const RECT& rect) {
    return {rect.left + 1, rect.top + 1, rect.right - 1, rect.bottom - 1};
}

void DrawOutline(PenPainter& pen, const RECT& rect) {
    const POINT corners[] = {{rect.left, rect.top},
                             {rect.right - 1, rect.top},
                             {rect.right - 1, rect.bottom - 1},
                             {rect.left, rect.bottom - 1},
                             {rect.left, rect.top}};
    // Each side begins at a corner; a rectangle of one pixel has no sides.
    pen.Dot(rect.left, rect.top);
    for (int i = 0; i + 1 < 5; ++i) pen.Line(corners[i], corners[i + 1]);
}

// The rows of an ellipse: the pixels whose middle lies inside of it.
class EllipseRows {
public:
    struct Span {
        LONG left, right;
        bool Has(LONG x) const { return x >= left && x < right; }
    };

    explicit EllipseRows(const RECT& rect)
        : rect_(rect),
          centreX_((static_cast<double>(rect.left) + rect.right) / 2),
          centreY_((static_cast<double>(rect.top) + rect.bottom) / 2),
          radiusX_((static_cast<double>(rect.right) - rect.left) / 2),
          radiusY_((static_cast<double>(rect.bottom) - rect.top) / 2) {}

    Span At(LONG y) const {
        if (y < rect_.top || y >= rect_.bottom) return {0, 0};
        const double height = (y + 0.5 - centreY_) / radiusY_;
        const double half = radiusX_ * std::sqrt(std::max(0.0, 1 - height * height));
        return {static_cast<LONG>(std::ceil(centreX_ - half - 0.5)),
                static_cast<LONG>(std::ceil(centreX_ + half - 0.5))};
    }

private:
    const RECT rect_;
    const double centreX_, centreY_, radiusX_, radiusY_;
};

// The pixels of a row that have no neighbour inside of the ellipse on one of their four sides.
void DrawRim(PenPainter& pen, const EllipseRows& rows, LONG y, const RECT& reach) {
    const EllipseRows::Span above = rows.At(y - 1), span = rows.At(y), below = rows.At(y + 1);
    const LONG last = std::min(span.right, reach.right);
    for (LONG x = std::max(span.left, reach.left); x < last; ++x) {
        if (x == span.left || x == span.right - 1 || !above.Has(x) || !below.Has(x)) pen.Dot(x, y);
    }
}

}  // namespace
}  // namespace tdkp

using namespace tdkp;

TDKP_API BOOL MoveToEx(HDC dc, INT x, INT y, POINT* former) {
    const auto context = FindContext(dc);
    if (!context) return FALSE;
    if (former != nullptr) *former = context->position;
    context->position = {x, y};
    context->stylePhase = 0;
    return TRUE;
}

TDKP_API BOOL LineTo(HDC dc, INT x, INT y) {
    const auto context = FindContext(dc);
    if (!context) return FALSE;
    DrawTarget target(*context);
    PenPainter pen(*context, target, context->stylePhase);
    pen.Line(context->position, {x, y});
    context->stylePhase = pen.StylePhase();
    context->position = {x, y};
    return TRUE;
}

TDKP_API BOOL Polyline(HDC dc, const POINT* points, INT count) {
    const auto context = FindContext(dc);
    if (!context || points == nullptr || count < 2) return FALSE;
    DrawTarget target(*context);
    PenPainter pen(*context, target, 0);
    for (INT i = 1; i < count; ++i) pen.Line(points[i - 1], points[i]);
    return TRUE;
}

TDKP_API BOOL Rectangle(HDC dc, INT left, INT top, INT right, INT bottom) {
    const auto context = FindContext(dc);
    if (!context) return FALSE;
    const RECT rect = ShapeRect(*context, left, top, right, bottom);
    if (IsEmpty(rect)) return TRUE;
    DrawTarget target(*context);
    PenPainter pen(*context, target, 0);
    FillWithBrush(*context, target, pen.Draws() ? Inside(rect) : rect);
    if (pen.Draws()) {
        DrawOutline(pen, rect);
        target.Damage(rect);
    }
    return TRUE;
}

TDKP_API BOOL Ellipse(HDC dc, INT left, INT top, INT right, INT bottom) {
    const auto context = FindContext(dc);
    if (!context) return FALSE;
    const RECT rect = ShapeRect(*context, left, top, right, bottom);
    if (IsEmpty(rect)) return TRUE;
    DrawTarget target(*context);
    PenPainter pen(*context, target, 0);
    const EllipseRows rows(rect);
    const RECT reach = Intersect(rect, Grow(target.ClipHull(), context->pen->width));
    for (LONG y = reach.top; y < reach.bottom; ++y) {
        const EllipseRows::Span span = rows.At(y);
        FillWithBrush(*context, target, {span.left, y, span.right, y + 1});
    }
    for (LONG y = reach.top; pen.Draws() && y < reach.bottom; ++y) DrawRim(pen, rows, y, reach);
    target.Damage(Grow(rect, context->pen->width));
    return TRUE;
}
