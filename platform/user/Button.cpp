#include "platform/user/Button.h"

#include "platform/user/ButtonFace.h"
#include "platform/user/ControlPaint.h"
#include "platform/user/DialogWindow.h"

namespace tdkp {
namespace {

// Extra bytes: the state bits, then the font.
constexpr INT kStateOffset = 0;
constexpr INT kFontOffset = sizeof(LONG_PTR);
constexpr INT kExtraBytes = 2 * sizeof(LONG_PTR);
constexpr LONG_PTR kHeldByKey = 0x100;
constexpr LONG_PTR kHeldByMouse = 0x200;

UINT TypeOf(HWND button) {
    return static_cast<UINT>(GetWindowLongPtrA(button, GWL_STYLE)) & BS_TYPEMASK;
}

bool IsPush(HWND button) {
    return TypeOf(button) == BS_PUSHBUTTON || TypeOf(button) == BS_DEFPUSHBUTTON;
}

LONG_PTR StateOf(HWND button) {
    return GetWindowLongPtrA(button, kStateOffset);
}

void ChangeState(HWND button, LONG_PTR set, LONG_PTR clear) {
    const LONG_PTR former = StateOf(button);
    const LONG_PTR state = (former & ~clear) | set;
    SetWindowLongPtrA(button, kStateOffset, state);
    if (((former ^ state) & (BST_PUSHED | BST_CHECKED)) != 0) InvalidateRect(button, nullptr, FALSE);
}

bool IsOver(HWND button, LPARAM position) {
    RECT client;
    GetClientRect(button, &client);
    return PtInRect(&client, PointOf(position)) != FALSE;
}

void Click(HWND button) {
    const LONG_PTR checked = StateOf(button) & BST_CHECKED;
    if (TypeOf(button) == BS_AUTOCHECKBOX) ChangeState(button, BST_CHECKED & ~checked, checked);
    const auto id = static_cast<WORD>(GetDlgCtrlID(button));
    if (const HWND parent = GetParent(button))
        SendMessageA(parent, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
}

// Ends a press; clicks if the button was down at the end.
void Release(HWND button, LONG_PTR holder, bool clicks) {
    const LONG_PTR state = StateOf(button);
    if ((state & holder) == 0) return;
    ChangeState(button, 0, BST_PUSHED | holder);
    if (holder == kHeldByMouse && GetCapture() == button) ReleaseCapture();
    if (clicks && (state & BST_PUSHED) != 0) Click(button);
}

void Press(HWND button) {
    if (TypeOf(button) == BS_GROUPBOX) return;
    SetFocus(button);
    SetCapture(button);
    ChangeState(button, BST_PUSHED | kHeldByMouse, 0);
}

// A push button with the focus is the one that Enter presses; without one it is the dialog's own.
bool IsDefault(HWND button) {
    if (!IsPush(button)) return false;
    const HWND focus = GetFocus();
    if (focus == button) return TypeOf(button) == BS_DEFPUSHBUTTON || DialogOf(button) != nullptr;
    const bool otherHasIt = focus != nullptr && (SendMessageA(focus, WM_GETDLGCODE, 0, 0) &
                                                 (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0;
    return TypeOf(button) == BS_DEFPUSHBUTTON && !(otherHasIt && GetParent(focus) == GetParent(button));
}

LRESULT Paint(HWND button) {
    PaintButton(button, TypeOf(button), StateOf(button), IsDefault(button));
    return 0;
}

LRESULT OnKey(HWND button, bool down, WPARAM key) {
    if (key != VK_SPACE) return 0;
    if (down && (StateOf(button) & (kHeldByKey | kHeldByMouse)) == 0)
        ChangeState(button, BST_PUSHED | kHeldByKey, 0);
    else if (!down)
        Release(button, kHeldByKey, true);
    return 0;
}

LRESULT OnMouseMove(HWND button, LPARAM position) {
    if ((StateOf(button) & kHeldByMouse) != 0)
        IsOver(button, position) ? ChangeState(button, BST_PUSHED, 0) : ChangeState(button, 0, BST_PUSHED);
    return 0;
}

// The frame of the default button follows the focus.
LRESULT OnFocus(HWND button, bool gained) {
    if (!gained) Release(button, kHeldByKey, false);
    InvalidateRect(button, nullptr, FALSE);
    if (const HWND dialog = DialogOf(button)) InvalidateRect(GetDlgItem(dialog, DefaultId(dialog)), nullptr, FALSE);
    return 0;
}

// What lies inside a group box is beside it in the tree, and shows on top of it.
LRESULT OnNcCreate(HWND button) {
    const LONG_PTR style = GetWindowLongPtrA(button, GWL_EXSTYLE);
    if (TypeOf(button) == BS_GROUPBOX) SetWindowLongPtrA(button, GWL_EXSTYLE, style | WS_EX_TRANSPARENT);
    return TRUE;
}

LRESULT DialogCode(HWND button) {
    switch (TypeOf(button)) {
        case BS_GROUPBOX:
            return DLGC_STATIC;
        case BS_AUTOCHECKBOX:
            return DLGC_BUTTON;
        case BS_DEFPUSHBUTTON:
            return DLGC_BUTTON | DLGC_DEFPUSHBUTTON;
        default:
            return DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON;
    }
}

LRESULT CALLBACK ButtonProcedure(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCCREATE:
            return OnNcCreate(button);
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
        case WM_SETFOCUS:
            return OnFocus(button, message == WM_SETFOCUS);
        case WM_ENABLE:
        case WM_SETTEXT:
            return PassOnAndRepaint(button, message, wParam, lParam);
        case WM_SETFONT:
            SetWindowLongPtrA(button, kFontOffset, static_cast<LONG_PTR>(wParam));
            return PassOnAndRepaint(button, message, wParam, lParam);
        case WM_GETFONT:
            return GetWindowLongPtrA(button, kFontOffset);
        case WM_GETDLGCODE:
            return DialogCode(button);
        case BM_GETCHECK:
            return StateOf(button) & BST_CHECKED;
        case BM_SETCHECK:
            return ChangeState(button, wParam != 0 ? BST_CHECKED : 0, wParam != 0 ? 0 : BST_CHECKED), 0;
        case BM_GETSTATE:
            return StateOf(button) & (BST_PUSHED | BST_CHECKED);
        case BM_SETSTATE:
            return ChangeState(button, wParam != 0 ? BST_PUSHED : 0, wParam != 0 ? 0 : BST_PUSHED), 0;
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
