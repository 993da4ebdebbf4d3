// What a window does with the messages that its own procedure leaves over.
#include <algorithm>

#include "platform/user/ControlPaint.h"
#include "platform/user/MessageQueue.h"
#include "platform/user/Paint.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

constexpr LPARAM kFromKeyboard = -1;

LRESULT SetText(HWND window, LPCSTR text) {
    Display* display = nullptr;
    const std::string title = text != nullptr ? text : "";
    {
        DispatcherGuard guard(DispatcherLock());
        Window* state = FindWindowState(guard, window);
        if (state == nullptr) return FALSE;
        state->title = title;
        if (state->TopLevel()) display = state->display;
    }
    if (display != nullptr) display->SetTitle(IdOf(window), title);
    return TRUE;
}

LRESULT GetText(HWND window, WPARAM size, LPSTR text) {
    if (size == 0 || text == nullptr) return 0;
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    const size_t length = state != nullptr ? state->title.copy(text, size - 1) : 0;
    text[length] = '\0';
    return static_cast<LRESULT>(length);
}

LRESULT GetTextLength(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    return state != nullptr ? static_cast<LRESULT>(state->title.size()) : 0;
}

// What a parent of another thread chooses, it chooses for its own window: a child without a cursor shows the same.
void NoteCursorAbove(const DispatcherGuard& guard, const Window& child) {
    const Window* parent = FindWindowState(guard, child.parent);
    if (parent == nullptr || parent->thread == child.thread) return;
    if (MessageQueue* queue = FindQueue(guard, parent->thread)) queue->cursorWindow = parent->handle;
}

// The parent may choose the cursor; else the class's own is taken, if it has one.
LRESULT ChooseCursor(HWND window, WPARAM wParam, LPARAM lParam) {
    HWND parent = nullptr;
    HCURSOR cursor = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr) return FALSE;
        parent = state->parent;
        cursor = state->windowClass->info.hCursor;
        NoteCursorAbove(guard, *state);
    }
    if (parent != nullptr && SendMessageA(parent, WM_SETCURSOR, wParam, lParam) != 0) return TRUE;
    if (cursor != nullptr) SetCursor(cursor);
    return FALSE;
}

HWND RootWindowOf(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    Window* state = FindWindowState(guard, window);
    return state != nullptr ? RootOf(guard, *state)->handle : nullptr;
}

LRESULT PassToParent(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    HWND parent = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        if (const Window* state = FindWindowState(guard, window)) parent = state->parent;
    }
    return parent != nullptr ? SendMessageA(parent, message, wParam, lParam) : 0;
}

// `position` is the place on the screen, -1 for the keyboard's.
LRESULT AskForMenu(HWND window, LPARAM position) {
    return SendMessageA(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(window), position);
}

LRESULT OnRightButtonUp(HWND window, LPARAM position) {
    POINT point = PointOf(position);
    ClientToScreen(window, &point);
    return AskForMenu(window, MAKELPARAM(static_cast<WORD>(point.x), static_cast<WORD>(point.y)));
}

LRESULT OnSystemKey(HWND window, WPARAM key) {
    constexpr SHORT kDown = static_cast<SHORT>(0x8000);
    if (key == VK_F4) return SendMessageA(RootWindowOf(window), WM_SYSCOMMAND, SC_CLOSE, 0);
    return key == VK_F10 && (GetKeyState(VK_SHIFT) & kDown) != 0 ? AskForMenu(window, kFromKeyboard) : 0;
}

LRESULT OnActivate(HWND window, WPARAM state) {
    if (LOWORD(state) != WA_INACTIVE && !IsChild(window, GetFocus())) SetFocus(window);
    return 0;
}

}  // namespace
}  // namespace tdkp

TDKP_API LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCCREATE:
            return TRUE;
        case WM_PAINT:
            return tdkp::PaintByDefault(window);
        case WM_ERASEBKGND:
            return tdkp::EraseByDefault(window, reinterpret_cast<HDC>(wParam));
        case WM_CLOSE:
            DestroyWindow(window);
            return 0;
        case WM_SYSCOMMAND:
            return (wParam & 0xFFF0) == SC_CLOSE ? SendMessageA(window, WM_CLOSE, 0, 0) : 0;
        case WM_SYSKEYDOWN:
            return tdkp::OnSystemKey(window, wParam);
        case WM_KEYUP:
            return wParam == VK_APPS ? tdkp::AskForMenu(window, tdkp::kFromKeyboard) : 0;
        case WM_RBUTTONUP:
            return tdkp::OnRightButtonUp(window, lParam);
        case WM_CONTEXTMENU:
            return tdkp::PassToParent(window, message, wParam, lParam);
        case WM_CANCELMODE:
            EndMenu();
            return 0;
        case WM_ACTIVATE:
            return tdkp::OnActivate(window, wParam);
        case WM_SETTEXT:
            return tdkp::SetText(window, reinterpret_cast<LPCSTR>(lParam));
        case WM_GETTEXT:
            return tdkp::GetText(window, wParam, reinterpret_cast<LPSTR>(lParam));
        case WM_GETTEXTLENGTH:
            return tdkp::GetTextLength(window);
        case WM_SETCURSOR:
            return tdkp::ChooseCursor(window, wParam, lParam);
        case WM_MOUSEWHEEL:
            return tdkp::PassToParent(window, message, wParam, lParam);
        case WM_NCHITTEST:
            return HTCLIENT;
        default:
            return 0;
    }
}
