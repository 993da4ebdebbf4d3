// How a VizEffectControl takes mouse and keys.
#include "src/settings/VizEffectControl.h"

namespace tdkviz {

namespace {

// How far from an arrow's point a press still takes it.
constexpr int32_t kArrowReach = 7;
constexpr int32_t kOutsideReach = 2;

int32_t SignedLow(LPARAM word) {
    return static_cast<int16_t>(LOWORD(word));
}

int32_t SignedHigh(LPARAM word) {
    return static_cast<int16_t>(HIWORD(word));
}

}  // namespace

// ---- Mouse

void VizEffectControl::OnPress(int32_t x, int32_t y) {
    const RECT inner = Inner();
    const auto take = [&](uint32_t axis, const RECT& reach) {
        if (!(Axes & axis) || !PtInRect(&reach, {x, y})) return;
        SetCapture(Window);
        DragAxis = axis;
    };
    const int32_t arrowX = ArrowX(inner);
    take(kAxisX,
         {arrowX - kArrowReach, inner.bottom - kArrowReach, arrowX + kArrowReach, inner.bottom + kOutsideReach});
    if (DragAxis != 0) return;
    const int32_t arrowY = ArrowY(inner);
    take(kAxisY, {inner.left - kOutsideReach, arrowY - kArrowReach, inner.left + kArrowReach, arrowY + kArrowReach});
}

void VizEffectControl::OnMove(int32_t x, int32_t y) {
    const RECT inner = Inner();
    if (DragAxis & kAxisX) {
        SetValue(kAxisX, ScaleX(inner).ValueAt(x - inner.left, SnapX));
    } else if (DragAxis & kAxisY) {
        SetValue(kAxisY, ScaleY(inner).ValueAt(inner.bottom - y, SnapY));
    }
}

void VizEffectControl::OnRelease() {
    if (GetCapture() == Window) ReleaseCapture();
    EndDrag();
}

void VizEffectControl::EndDrag() {
    DragAxis = 0;
    InvalidateRect(Window, nullptr, TRUE);
}

// ---- Keyboard

void VizEffectControl::OnKey(WPARAM key) {
    const struct {
        WPARAM key;
        uint32_t axis;
        int32_t value;
    } moves[] = {
        {VK_LEFT, kAxisX, ValueX - 1}, {VK_RIGHT, kAxisX, ValueX + 1}, {VK_DOWN, kAxisY, ValueY - 1},
        {VK_UP, kAxisY, ValueY + 1},   {VK_HOME, kAxisX, MinX},        {VK_END, kAxisX, MaxX},
        {VK_NEXT, kAxisY, MinY},       {VK_PRIOR, kAxisY, MaxY},
    };
    for (const auto& move : moves) {
        if (move.key == key && (Axes & move.axis)) SetValue(move.axis, move.value);
    }
}

void VizEffectControl::OnFocus(bool has) {
    HasFocus = has;
    InvalidateRect(Window, nullptr, TRUE);
}

LRESULT CALLBACK VizEffectControl::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* control = reinterpret_cast<VizEffectControl*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (!control) return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
        case WM_PAINT:
            return control->OnPaint(), 0;
        case WM_MOUSEMOVE:
            return control->OnMove(SignedLow(lParam), SignedHigh(lParam)), 0;
        case WM_LBUTTONDOWN:
            return control->OnPress(SignedLow(lParam), SignedHigh(lParam)), 0;
        case WM_LBUTTONUP:
            return control->OnRelease(), 0;
        case WM_CAPTURECHANGED:
            return control->EndDrag(), 0;
        case WM_CANCELMODE:
            control->OnRelease();
            return DefWindowProcA(window, message, wParam, lParam);
        case WM_GETDLGCODE:
            return DLGC_WANTARROWS;
        case WM_KEYDOWN:
            return control->OnKey(wParam), 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            return control->OnFocus(message == WM_SETFOCUS), 0;
        case WM_NCDESTROY:  // with its parent
            control->Window = nullptr;
            [[fallthrough]];
        default:
            return DefWindowProcA(window, message, wParam, lParam);
    }
}

}  // namespace tdkviz
