// Lines and shapes.
#include <windows.h>

#include "platform/gdi/DrawTarget.h"
#include "platform/gdi/ObjectTable.h"
#include "platform/gdi/PenPainter.h"
#include "platform/gdi/Rects.h"

namespace tdkp {
namespace {

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

TDKP_API BOOL Rectangle(HDC dc, INT left, INT top, INT right, INT bottom) {
    const auto context = FindContext(dc);
    if (!context) return FALSE;
    const RECT rect = ShapeRect(*context, left, top, right, bottom);
    if (IsEmpty(rect)) return TRUE;
    DrawTarget target(*context);
    PenPainter pen(*context, target, 0);
    if (!context->brush->hollow) target.Fill(pen.Draws() ? Inside(rect) : rect, context->brush->color);
    if (pen.Draws()) {
        DrawOutline(pen, rect);
        target.Damage(rect);
    }
    return TRUE;
}
