// The keys of dialogs: Tab, the arrows, Enter, Escape and the marked characters.
#include "platform/user/DialogWindow.h"

namespace tdkp {
namespace {

constexpr WPARAM kLastPlainCharacter = 0x7F;

bool IsPushCode(LRESULT code) {
    return (code & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0;
}

// The control that the message is for; null for the dialog itself.
HWND ControlOf(HWND dialog, HWND window) {
    while (window != nullptr && window != dialog && GetParent(window) != dialog) window = GetParent(window);
    return window != dialog ? window : nullptr;
}

void FocusOn(HWND control) {
    if (control != nullptr && control != GetFocus()) SetFocus(control);
}

// The command of a button that need not exist; one that is disabled gives none.
void Command(HWND dialog, INT id) {
    const HWND control = GetDlgItem(dialog, id);
    if (control != nullptr && !IsWindowEnabled(control)) return;
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(id), BN_CLICKED), reinterpret_cast<LPARAM>(control));
}

void OnEnter(HWND dialog, HWND control, LRESULT code) {
    const bool pushes = control != nullptr && IsPushCode(code);
    Command(dialog, pushes ? GetDlgCtrlID(control) : DefaultId(dialog));
}

bool OnKeyDown(HWND dialog, HWND control, LRESULT code, WPARAM key) {
    switch (key) {
        case VK_TAB:
            FocusOn(NextTabStop(dialog, control, (GetKeyState(VK_SHIFT) & 0x8000) != 0));
            return true;
        case VK_LEFT:
        case VK_UP:
        case VK_RIGHT:
        case VK_DOWN:
            if ((code & DLGC_WANTARROWS) != 0) return false;
            FocusOn(NextInGroup(dialog, control, key == VK_LEFT || key == VK_UP));
            return true;
        case VK_RETURN:
            return OnEnter(dialog, control, code), true;
        case VK_ESCAPE:
        case VK_CANCEL:
            return Command(dialog, IDCANCEL), true;
        default:
            return false;
    }
}

// A marked text that takes no input itself stands for the control behind it.
bool OnCharacter(HWND dialog, HWND control, WPARAM character) {
    if (character <= VK_SPACE || character > kLastPlainCharacter) return false;
    const HWND found = FindMnemonic(dialog, control, static_cast<char>(character));
    if (found == nullptr) return false;
    const LRESULT code = SendMessageA(found, WM_GETDLGCODE, 0, 0);
    FocusOn((code & DLGC_STATIC) != 0 ? NextTabStop(dialog, found, false) : found);
    if ((code & DLGC_BUTTON) != 0) SendMessageA(found, BM_CLICK, 0, 0);
    return true;
}

bool TakeKey(HWND dialog, MSG* message) {
    const UINT kind = message->message;
    if (kind != WM_KEYDOWN && kind != WM_CHAR && kind != WM_SYSCHAR) return false;
    const HWND control = ControlOf(dialog, message->hwnd);
    const LRESULT code = control != nullptr
                             ? SendMessageA(control, WM_GETDLGCODE, message->wParam, reinterpret_cast<LPARAM>(message))
                             : 0;
    if ((code & DLGC_WANTALLKEYS) != 0 && kind != WM_SYSCHAR) return false;
    if (kind == WM_KEYDOWN) return OnKeyDown(dialog, control, code, message->wParam);
    return OnCharacter(dialog, control, message->wParam);
}

}  // namespace
}  // namespace tdkp

TDKP_API BOOL IsDialogMessageA(HWND dialog, MSG* message) {
    if (dialog == nullptr || message == nullptr || (message->hwnd != dialog && !IsChild(dialog, message->hwnd)))
        return FALSE;
    if (tdkp::TakeKey(dialog, message)) return TRUE;
    TranslateMessage(message);
    DispatchMessageA(message);
    return TRUE;
}

TDKP_API BOOL CheckDlgButton(HWND dialog, INT id, UINT check) {
    const HWND control = GetDlgItem(dialog, id);
    if (control == nullptr) return FALSE;
    SendMessageA(control, BM_SETCHECK, check, 0);
    return TRUE;
}

TDKP_API UINT IsDlgButtonChecked(HWND dialog, INT id) {
    return static_cast<UINT>(SendDlgItemMessageA(dialog, id, BM_GETCHECK, 0, 0));
}
