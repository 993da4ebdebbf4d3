#include "platform/user/MenuFace.h"

#include "platform/gdi/Resolution.h"
#include "platform/user/ButtonFace.h"
#include "platform/user/ControlPaint.h"

namespace tdkp {
namespace {

// At 96 pixels to the inch.
constexpr int kDot = 6;
constexpr int kArrow = 4;  // its width; it's twice as high, less one

// Light comes from the upper left, as with the buttons.
void PaintFrame(ControlPaint& paint) {
    RECT box = paint.Box();
    paint.Edge(box, COLOR_3DLIGHT, COLOR_3DDKSHADOW);
    InflateRect(&box, -1, -1);
    paint.Edge(box, COLOR_BTNHIGHLIGHT, COLOR_BTNSHADOW);
}

void PaintSeparator(ControlPaint& paint, const RECT& row) {
    const LONG inset = ScaledPixels(1);
    const LONG middle = (row.top + row.bottom) / 2;
    paint.Fill({row.left + inset, middle - 1, row.right - inset, middle}, COLOR_BTNSHADOW);
    paint.Fill({row.left + inset, middle, row.right - inset, middle + 1}, COLOR_BTNHIGHLIGHT);
}

// A disc whose rows are whole pixels.
void PaintDot(ControlPaint& paint, const RECT& box, INT color) {
    const LONG side = ScaledPixels(kDot);
    const LONG left = (box.left + box.right - side) / 2;
    const LONG top = (box.top + box.bottom - side) / 2;
    // Distances are counted in halves of a pixel, from the disc's middle to that of a row.
    for (LONG row = 0; row < side; ++row) {
        const LONG height = 2 * row + 1 - side;
        LONG half = side;
        while (half > 0 && half * half + height * height > side * side) --half;
        const LONG inset = (side - half) / 2;
        paint.Fill({left + inset, top + row, left + side - inset, top + row + 1}, color);
    }
}

void PaintArrow(ControlPaint& paint, const RECT& box, INT color) {
    const LONG width = ScaledPixels(kArrow);
    const LONG left = (box.left + box.right - width) / 2;
    const LONG middle = (box.top + box.bottom) / 2;
    for (LONG column = 0; column < width; ++column) {
        const LONG half = width - 1 - column;
        paint.Fill({left + column, middle - half, left + column + 1, middle + half + 1}, color);
    }
}

// All that stands in the row, in one colour.
void PaintParts(ControlPaint& paint, const MenuItem& item, const RECT& row, INT color) {
    const RECT mark = {row.left, row.top, row.left + MenuMarkWidth(), row.bottom};
    const RECT arrow = {row.right - MenuArrowWidth(), row.top, row.right, row.bottom};
    if (item.Checked()) {
        if (item.Radio())
            PaintDot(paint, mark, color);
        else
            PaintMark(paint, mark, color);
    }
    if (item.Submenu() != nullptr) PaintArrow(paint, arrow, color);
    const MenuText text = CutMenuText(item.text);
    RECT label = {mark.right, row.top, arrow.left, row.bottom};
    constexpr UINT kFormat = DT_VCENTER | DT_SINGLELINE;
    SetTextColor(paint.Dc(), GetSysColor(color));
    DrawTextA(paint.Dc(), text.label.c_str(), -1, &label, DT_LEFT | kFormat);
    DrawTextA(paint.Dc(), text.shortcut.c_str(), -1, &label, DT_RIGHT | DT_NOPREFIX | kFormat);
}

void PaintItem(ControlPaint& paint, const MenuItem& item, const RECT& row, bool selected) {
    paint.Fill(row, selected ? COLOR_HIGHLIGHT : COLOR_MENU);
    if (item.Separates()) return PaintSeparator(paint, row);
    if (!item.Enabled() && !selected) {
        // Embossed, like the labels of disabled controls.
        RECT shadow = row;
        OffsetRect(&shadow, 1, 1);
        PaintParts(paint, item, shadow, COLOR_BTNHIGHLIGHT);
    }
    const INT plain = selected ? COLOR_HIGHLIGHTTEXT : COLOR_MENUTEXT;
    PaintParts(paint, item, row, item.Enabled() ? plain : COLOR_GRAYTEXT);
}

}  // namespace

void PaintMenu(const OpenMenu& open) {
    RECT update;
    GetUpdateRect(open.window, &update, FALSE);
    ControlPaint paint(open.window);
    RECT inside = paint.Box();
    InflateRect(&inside, -MenuBorder(), -MenuBorder());
    RECT common;
    if (!IntersectRect(&common, &update, &inside) || common.left != update.left || common.top != update.top ||
        common.right != update.right || common.bottom != update.bottom) {
        paint.Fill(paint.Box(), COLOR_MENU);
        PaintFrame(paint);
    }
    for (size_t index = 0; index < open.items.size(); ++index) {
        const RECT& row = open.layout.items[index];
        if (IntersectRect(&common, &row, &update))
            PaintItem(paint, open.items[index], row, static_cast<int>(index) == open.selected);
    }
}

}  // namespace tdkp
