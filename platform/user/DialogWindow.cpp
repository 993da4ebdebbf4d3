#include "platform/user/DialogWindow.h"

#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

DLGPROC ProcedureOf(HWND dialog) {
    return reinterpret_cast<DLGPROC>(GetWindowLongPtrA(dialog, DWLP_DLGPROC));
}

LRESULT OnNcDestroy(HWND dialog) {
    DeleteObject(reinterpret_cast<HGDIOBJ>(GetWindowLongPtrA(dialog, kDialogFontOffset)));
    return 0;
}

// What a dialog does with a message that its procedure doesn't want.
LRESULT ByDefault(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CLOSE: {
            const HWND cancel = GetDlgItem(dialog, IDCANCEL);
            if (cancel == nullptr || IsWindowEnabled(cancel))
                PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), reinterpret_cast<LPARAM>(cancel));
            return 0;
        }
        case WM_SETFOCUS:
            if (const HWND first = NextTabStop(dialog, nullptr, false)) SetFocus(first);
            return 0;
        case WM_ACTIVATE:
            return 0;  // the control that had the focus gets it back
        case WM_GETFONT:
            return GetWindowLongPtrA(dialog, kDialogFontOffset);
        case WM_NCDESTROY:
            return OnNcDestroy(dialog);
        default:
            return DefWindowProcA(dialog, message, wParam, lParam);
    }
}

LRESULT CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    SetWindowLongPtrA(dialog, DWLP_MSGRESULT, 0);
    const DLGPROC procedure = ProcedureOf(dialog);
    const INT_PTR taken = procedure != nullptr ? procedure(dialog, message, wParam, lParam) : 0;
    if (message == WM_INITDIALOG) return taken;
    // Its font goes whatever the program does with the message.
    if (taken == 0 || message == WM_NCDESTROY) return ByDefault(dialog, message, wParam, lParam);
    return GetWindowLongPtrA(dialog, DWLP_MSGRESULT);
}

}  // namespace

WNDCLASSA DialogClass() {
    WNDCLASSA info = {};
    info.style = CS_DBLCLKS | CS_SAVEBITS;
    info.lpfnWndProc = DialogProcedure;
    info.cbWndExtra = DLGWINDOWEXTRA;
    info.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    info.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<ULONG_PTR>(COLOR_3DFACE + 1));
    return info;
}

HWND DialogOf(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    Window* state = FindWindowState(guard, window);
    if (state == nullptr) return nullptr;
    const Window* root = RootOf(guard, *state);
    return root->windowClass->info.lpfnWndProc == DialogProcedure ? root->handle : nullptr;
}

INT DefaultId(HWND dialog) {
    const auto id = static_cast<INT>(GetWindowLongPtrA(dialog, kDefaultIdOffset));
    return id != 0 ? id : IDOK;
}

}  // namespace tdkp
