#include "platform/user/Button.h"

#include <string>

namespace tdkp {
namespace {

// Extra bytes: the state bits, then the font.
constexpr INT kStateOffset = 0;
constexpr INT kFontOffset = sizeof(LONG_PTR);
constexpr INT kExtraBytes = 2 * sizeof(LONG_PTR);
constexpr LONG_PTR kPushed = BST_PUSHED;
constexpr LONG_PTR kHeldByKey = 0x100;
constexpr LONG_PTR kHeldByMouse = 0x200;

LONG_PTR StateOf(HWND button) {
    return GetWindowLongPtrA(button, kStateOffset);
}

void ChangeState(HWND button, LONG_PTR set, LONG_PTR clear) {
    const LONG_PTR former = StateOf(button);
    const LONG_PTR state = (former & ~clear) | set;
    SetWindowLongPtrA(button, kStateOffset, state);
    if (((former ^ state) & kPushed) != 0) InvalidateRect(button, nullptr, FALSE);
}

bool IsOver(HWND button, LPARAM position) {
    RECT client;
    GetClientRect(button, &client);
    const POINT point = {static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(position))),
                         static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(position)))};
    return PtInRect(&client, point) != FALSE;
}

void Click(HWND button) {
    const auto id = static_cast<WORD>(GetDlgCtrlID(button));
    if (const HWND parent = GetParent(button))
        SendMessageA(parent, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
}

// Ends a press; clicks if the button was down at the end.
void Release(HWND button, LONG_PTR holder, bool clicks) {
    const LONG_PTR state = StateOf(button);
    if ((state & holder) == 0) return;
    ChangeState(button, 0, kPushed | holder);
    if (holder == kHeldByMouse && GetCapture() == button) ReleaseCapture();
    if (clicks && (state & kPushed) != 0) Click(button);
}

void Press(HWND button) {
    SetFocus(button);
    SetCapture(button);
    ChangeState(button, kPushed | kHeldByMouse, 0);
}

void Edge(HDC dc, const RECT& box, INT topLeft, INT bottomRight) {
    const RECT top = {box.left, box.top, box.right - 1, box.top + 1};
    const RECT left = {box.left, box.top, box.left + 1, box.bottom - 1};
    const RECT bottom = {box.left, box.bottom - 1, box.right, box.bottom};
    const RECT right = {box.right - 1, box.top, box.right, box.bottom};
    FillRect(dc, &top, GetSysColorBrush(topLeft));
    FillRect(dc, &left, GetSysColorBrush(topLeft));
    FillRect(dc, &bottom, GetSysColorBrush(bottomRight));
    FillRect(dc, &right, GetSysColorBrush(bottomRight));
}

// Every other pixel of the outline.
void FocusRect(HDC dc, const RECT& box) {
    const COLORREF color = GetSysColor(COLOR_BTNTEXT);
    for (LONG x = box.left; x < box.right; x += 2) {
        SetPixel(dc, x, box.top, color);
        SetPixel(dc, x, box.bottom - 1, color);
    }
    for (LONG y = box.top; y < box.bottom; y += 2) {
        SetPixel(dc, box.left, y, color);
        SetPixel(dc, box.right - 1, y, color);
    }
}

void DrawFrame(HDC dc, RECT* box, bool isDefault, bool pushed) {
    if (isDefault) {
        FrameRect(dc, box, GetSysColorBrush(COLOR_WINDOWFRAME));
        InflateRect(box, -1, -1);
    }
    if (pushed) {
        FrameRect(dc, box, GetSysColorBrush(COLOR_BTNSHADOW));
        InflateRect(box, -1, -1);
    } else {
        Edge(dc, *box, COLOR_BTNHIGHLIGHT, COLOR_3DDKSHADOW);
        InflateRect(box, -1, -1);
        Edge(dc, *box, COLOR_3DLIGHT, COLOR_BTNSHADOW);
    }
}

void DrawLabel(HWND button, HDC dc, RECT box, bool pushed) {
    const INT length = GetWindowTextLengthA(button);
    std::string text(static_cast<size_t>(length) + 1, '\0');
    GetWindowTextA(button, text.data(), length + 1);
    const UINT format = DT_CENTER | DT_VCENTER | DT_SINGLELINE;
    if (pushed) OffsetRect(&box, 1, 1);
    SetBkMode(dc, TRANSPARENT);
    if (!IsWindowEnabled(button)) {
        RECT shadow = box;
        OffsetRect(&shadow, 1, 1);
        SetTextColor(dc, GetSysColor(COLOR_BTNHIGHLIGHT));
        DrawTextA(dc, text.c_str(), length, &shadow, format);
    }
    SetTextColor(dc, GetSysColor(IsWindowEnabled(button) ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    DrawTextA(dc, text.c_str(), length, &box, format);
}

LRESULT Paint(HWND button) {
    constexpr INT kFocusInset = 3;
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(button, &paint);
    RECT box;
    GetClientRect(button, &box);
    auto font = reinterpret_cast<HGDIOBJ>(GetWindowLongPtrA(button, kFontOffset));
    const HGDIOBJ former = SelectObject(dc, font != nullptr ? font : GetStockObject(DEFAULT_GUI_FONT));
    const bool pushed = (StateOf(button) & kPushed) != 0;
    const bool isDefault = (GetWindowLongPtrA(button, GWL_STYLE) & 0xF) == BS_DEFPUSHBUTTON;
    FillRect(dc, &box, GetSysColorBrush(COLOR_BTNFACE));
    DrawFrame(dc, &box, isDefault || pushed, pushed);
    DrawLabel(button, dc, box, pushed);
    if (GetFocus() == button) {
        InflateRect(&box, -kFocusInset, -kFocusInset);
        FocusRect(dc, box);
    }
    SelectObject(dc, former);
    EndPaint(button, &paint);
    return 0;
}

LRESULT OnKey(HWND button, bool down, WPARAM key) {
    if (key != VK_SPACE) return 0;
    if (down && (StateOf(button) & (kHeldByKey | kHeldByMouse)) == 0)
        ChangeState(button, kPushed | kHeldByKey, 0);
    else if (!down)
        Release(button, kHeldByKey, true);
    return 0;
}

LRESULT OnMouseMove(HWND button, LPARAM position) {
    if ((StateOf(button) & kHeldByMouse) != 0)
        IsOver(button, position) ? ChangeState(button, kPushed, 0) : ChangeState(button, 0, kPushed);
    return 0;
}

LRESULT LoseFocus(HWND button) {
    Release(button, kHeldByKey, false);
    InvalidateRect(button, nullptr, FALSE);
    return 0;
}

LRESULT PassOn(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
    const LRESULT result = DefWindowProcA(button, message, wParam, lParam);
    InvalidateRect(button, nullptr, FALSE);
    return result;
}

LRESULT CALLBACK ButtonProcedure(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_PAINT:
            return Paint(button);
        case WM_ERASEBKGND:
            return 1;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            return Press(button), 0;
        case WM_MOUSEMOVE:
            return OnMouseMove(button, lParam);
        case WM_LBUTTONUP:
            return Release(button, kHeldByMouse, IsOver(button, lParam)), 0;
        case WM_CAPTURECHANGED:
            return Release(button, kHeldByMouse, false), 0;
        case WM_KEYDOWN:
        case WM_KEYUP:
            return OnKey(button, message == WM_KEYDOWN, wParam);
        case WM_KILLFOCUS:
            return LoseFocus(button);
        case WM_SETFOCUS:
        case WM_ENABLE:
        case WM_SETTEXT:
            return PassOn(button, message, wParam, lParam);
        case WM_SETFONT:
            SetWindowLongPtrA(button, kFontOffset, static_cast<LONG_PTR>(wParam));
            return PassOn(button, message, wParam, lParam);
        case WM_GETFONT:
            return GetWindowLongPtrA(button, kFontOffset);
        case WM_GETDLGCODE:
            return DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON;
        case BM_GETSTATE:
            return StateOf(button) & kPushed;
        case BM_SETSTATE:
            return ChangeState(button, wParam != 0 ? kPushed : 0, wParam != 0 ? 0 : kPushed), 0;
        case BM_CLICK:
            return Click(button), 0;
        default:
            return DefWindowProcA(button, message, wParam, lParam);
    }
}

}  // namespace

WNDCLASSA ButtonClass() {
    WNDCLASSA info = {};
    info.style = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
    info.lpfnWndProc = ButtonProcedure;
    info.cbWndExtra = kExtraBytes;
    info.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    return info;
}

}  // namespace tdkp
