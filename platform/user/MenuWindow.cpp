#include "platform/user/MenuWindow.h"

#include "platform/user/MenuFace.h"

namespace tdkp {
namespace {

// The layer's own, behind the one that is published: wParam is an item, lParam the RECT that gets its place.
constexpr UINT kGetItemRect = WM_USER;

OpenMenu* OpenMenuOf(HWND window) {
    return reinterpret_cast<OpenMenu*>(GetWindowLongPtrA(window, GWLP_USERDATA));
}

LRESULT OnCreate(HWND window, const CREATESTRUCTA& create) {
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create.lpCreateParams));
    return TRUE;
}

LRESULT OnGetItemRect(const OpenMenu& open, WPARAM item, RECT* rect) {
    if (item >= open.items.size()) return FALSE;
    *rect = ScreenRectOf(open, static_cast<int>(item));
    return TRUE;
}

LRESULT CALLBACK MenuProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) return OnCreate(window, *reinterpret_cast<CREATESTRUCTA*>(lParam));
    OpenMenu* open = OpenMenuOf(window);
    if (open == nullptr) return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
        case WM_PAINT:
            return PaintMenu(*open), 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_GETFONT:
            return reinterpret_cast<LRESULT>(open->font);
        case WM_NCDESTROY:
            // It may go with its owner, while the loop that serves it waits.
            return PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0), 0;
        case MN_GETHMENU:
            return reinterpret_cast<LRESULT>(open->menu);
        case kGetItemRect:
            return OnGetItemRect(*open, wParam, reinterpret_cast<RECT*>(lParam));
        default:
            return DefWindowProcA(window, message, wParam, lParam);
    }
}

}  // namespace

WNDCLASSA MenuClass() {
    WNDCLASSA info = {};
    info.style = CS_SAVEBITS;
    info.lpfnWndProc = MenuProcedure;
    info.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    return info;
}

HWND ShowMenuWindow(OpenMenu* open, POINT corner, HWND owner) {
    const SIZE size = open->layout.size;
    open->window = CreateWindowExA(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, kMenuClass, "", WS_POPUP, corner.x, corner.y,
                                   size.cx, size.cy, owner, nullptr, nullptr, open);
    if (open->window == nullptr) return nullptr;
    ShowWindow(open->window, SW_SHOWNA);
    UpdateWindow(open->window);
    return open->window;
}

void Select(OpenMenu* open, int item) {
    if (open->selected == item) return;
    for (const int changed : {open->selected, item}) {
        if (changed >= 0) InvalidateRect(open->window, &open->layout.items[static_cast<size_t>(changed)], FALSE);
    }
    open->selected = item;
}

RECT ScreenRectOf(const OpenMenu& open, int item) {
    RECT window = {0, 0, 0, 0};
    GetWindowRect(open.window, &window);
    RECT rect = open.layout.items[static_cast<size_t>(item)];
    OffsetRect(&rect, window.left, window.top);
    return rect;
}

}  // namespace tdkp

TDKP_API BOOL GetMenuItemRect(HWND, HMENU menu, UINT position, RECT* rect) {
    if (rect == nullptr) return FALSE;
    HWND window = nullptr;
    while ((window = FindWindowExA(nullptr, window, tdkp::kMenuClass, nullptr)) != nullptr) {
        if (reinterpret_cast<HMENU>(SendMessageA(window, MN_GETHMENU, 0, 0)) == menu)
            return SendMessageA(window, tdkp::kGetItemRect, position, reinterpret_cast<LPARAM>(rect)) != 0;
    }
    return FALSE;
}
