#include "platform/user/ButtonFace.h"

#include "platform/gdi/Resolution.h"
#include "platform/user/ControlPaint.h"
#include "platform/user/TextMeasure.h"

namespace tdkp {
namespace {

// At 96 pixels to the inch.
constexpr int kCheckBox = 13;
constexpr int kCheckGap = 4;      // between box and text
constexpr int kCaptionStart = 8;  // of a group box
constexpr int kCaptionGap = 2;
constexpr int kFocusInset = 3;

void PaintPush(HWND button, LONG_PTR state, bool isDefault) {
    ControlPaint paint(button);
    RECT box = paint.Box();
    const bool pushed = (state & BST_PUSHED) != 0;
    paint.Fill(box, COLOR_BTNFACE);
    if (isDefault || pushed) {
        paint.Edge(box, COLOR_WINDOWFRAME, COLOR_WINDOWFRAME);
        InflateRect(&box, -1, -1);
    }
    const RECT inner = {box.left + 1, box.top + 1, box.right - 1, box.bottom - 1};
    paint.Edge(box, pushed ? COLOR_BTNSHADOW : COLOR_BTNHIGHLIGHT, pushed ? COLOR_BTNSHADOW : COLOR_3DDKSHADOW);
    if (!pushed) paint.Edge(inner, COLOR_3DLIGHT, COLOR_BTNSHADOW);
    RECT label = box;
    if (pushed) OffsetRect(&label, 1, 1);
    paint.Label(ControlText(button), label, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    if (GetFocus() != button) return;
    InflateRect(&box, -kFocusInset, -kFocusInset);
    paint.FocusRect(box);
}

void PaintCheck(HWND button, LONG_PTR state) {
    ControlPaint paint(button);
    const RECT& all = paint.Box();
    const LONG side = ScaledPixels(kCheckBox);
    const LONG top = (HeightOf(all) - side) / 2;
    RECT box = {all.left, top, all.left + side, top + side};
    const bool gray = (state & BST_PUSHED) != 0 || !IsWindowEnabled(button);
    paint.Fill(all, COLOR_BTNFACE);
    paint.Edge(box, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT);
    InflateRect(&box, -1, -1);
    paint.Edge(box, COLOR_3DDKSHADOW, COLOR_3DLIGHT);
    InflateRect(&box, -1, -1);
    paint.Fill(box, gray ? COLOR_BTNFACE : COLOR_WINDOW);
    InflateRect(&box, 2, 2);
    if ((state & BST_CHECKED) != 0) PaintMark(paint, box, IsWindowEnabled(button) ? COLOR_WINDOWTEXT : COLOR_BTNSHADOW);

    constexpr UINT kFormat = DT_LEFT | DT_VCENTER | DT_SINGLELINE;
    const std::string text = ControlText(button);
    const SIZE size = TextSize(paint.Dc(), text, kFormat);
    RECT label = all;
    label.left = CheckLabelStart();
    paint.Label(text, label, kFormat);
    if (GetFocus() != button) return;
    const LONG textTop = (HeightOf(all) - size.cy) / 2;
    const RECT around = {label.left - 1, textTop, label.left + size.cx + 1, textTop + size.cy};
    RECT seen;
    if (IntersectRect(&seen, &around, &all)) paint.FocusRect(seen);
}

void PaintGroup(HWND button) {
    ControlPaint paint(button);
    constexpr UINT kFormat = DT_LEFT | DT_SINGLELINE;
    const std::string text = ControlText(button);
    const SIZE size = TextSize(paint.Dc(), text, kFormat);
    const LONG gap = ScaledPixels(kCaptionGap);
    RECT box = paint.Box();
    paint.Fill(box, COLOR_BTNFACE);
    box.top += size.cy / 2;
    // A groove: a dark line with a light one behind it.
    paint.Edge({box.left + 1, box.top + 1, box.right, box.bottom}, COLOR_BTNHIGHLIGHT, COLOR_BTNHIGHLIGHT);
    paint.Edge({box.left, box.top, box.right - 1, box.bottom - 1}, COLOR_BTNSHADOW, COLOR_BTNSHADOW);
    if (text.empty()) return;
    const LONG left = ScaledPixels(kCaptionStart);
    const RECT label = {left, 0, left + size.cx, size.cy};
    paint.Fill({label.left - gap, 0, label.right + gap, label.bottom}, COLOR_BTNFACE);
    paint.Label(text, label, kFormat);
}

}  // namespace

// Two strokes, three pixels high where a box of a dialog has thirteen.
void PaintMark(ControlPaint& paint, const RECT& box, INT color) {
    const int side = ScaledPixels(kCheckBox);
    const int thickness = side * 3 / kCheckBox;
    const int down = side * 2 / kCheckBox;  // columns of the short stroke
    const int up = side * 4 / kCheckBox;    // and of the long one
    const LONG left = box.left + (WidthOf(box) - down - up - 1) / 2;
    const LONG bottom = box.top + (HeightOf(box) + up + thickness) / 2;  // of the lowest column
    for (int i = 0; i <= down + up; ++i) {
        const LONG end = bottom - (i < down ? down - i : i - down);
        paint.Fill({left + i, end - thickness, left + i + 1, end}, color);
    }
}

LONG CheckLabelStart() {
    return ScaledPixels(kCheckBox) + ScaledPixels(kCheckGap);
}

void PaintButton(HWND button, UINT type, LONG_PTR state, bool isDefault) {
    switch (type) {
        case BS_GROUPBOX:
            return PaintGroup(button);
        case BS_AUTOCHECKBOX:
            return PaintCheck(button, state);
        default:
            return PaintPush(button, state, isDefault);
    }
}

}  // namespace tdkp
