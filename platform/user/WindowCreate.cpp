#include <algorithm>
#include <string>

#include "platform/user/ClassTable.h"
#include "platform/user/ClientEdge.h"
#include "platform/user/DisplayUse.h"
#include "platform/user/ExecutionState.h"
#include "platform/user/MenuWindow.h"
#include "platform/user/MessageQueue.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowDestroy.h"
#include "platform/user/WindowPosition.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

constexpr INT kDefaultDivisor = 8;  // a default position is an eighth of the screen, a default size six eighths

// A size that isn't told becomes a part of the screen.
RECT PlaceOf(const CREATESTRUCTA& create, SIZE screen) {
    INT x = create.x;
    INT y = create.y;
    INT width = create.cx;
    INT height = create.cy;
    const bool child = (create.style & WS_CHILD) != 0;
    if (x == CW_USEDEFAULT) {
        x = child ? 0 : screen.cx / kDefaultDivisor;
        y = child ? 0 : screen.cy / kDefaultDivisor;
    }
    if (width == CW_USEDEFAULT) {
        width = child ? 0 : screen.cx - 2 * (screen.cx / kDefaultDivisor);
        height = child ? 0 : screen.cy - 2 * (screen.cy / kDefaultDivisor);
    }
    if (y == CW_USEDEFAULT) y = 0;
    return RECT{x, y, x + std::max(width, 0), y + std::max(height, 0)};
}

// Finds out what `hwndParent` is: a window of the layer, one of a foreign client, or nothing.
bool ResolveParent(const CREATESTRUCTA& create, Display& display, Window* window) {
    const HWND parent = create.hwndParent;
    const bool child = (create.style & WS_CHILD) != 0;
    if (parent == nullptr) {
        if (child) SetLastError(ERROR_TLW_WITH_WSCHILD);
        return !child;
    }
    bool ours = false;
    HWND root = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        Window* state = FindWindowState(guard, parent);
        ours = state != nullptr && !state->destroying;
        if (ours) root = RootOf(guard, *state)->handle;
    }
    if (!ours && !display.IsForeign(IdOf(parent))) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return false;
    }
    if (child)
        (ours ? window->parent : window->foreignParent) = parent;
    else
        window->owner = ours ? root : parent;
    if (child && (create.dwExStyle & WS_EX_CLIENTEDGE) != 0) window->edge = kClientEdge;
    return true;
}

WindowId MakeOnDisplay(Display& display, const Window& window) {
    DisplayWindowInfo info;
    info.parent = IdOf(window.parent != nullptr ? window.parent : window.foreignParent);
    {
        DispatcherGuard guard(DispatcherLock());
        const POINT corner = PlaceOnDisplay(guard, window);
        info.x = corner.x;
        info.y = corner.y;
    }
    info.width = std::max(window.Width(), 1);
    info.height = std::max(window.Height(), 1);
    info.topLevel = window.TopLevel();
    info.resizable = !info.topLevel || (window.style & WS_THICKFRAME) != 0;
    info.framed = (window.style & (WS_CAPTION | WS_THICKFRAME)) != 0;
    info.menu = window.windowClass->builtIn && window.windowClass->name == kMenuClass;
    info.owner = window.owner != nullptr ? IdOf(window.owner) : 0;
    info.className = window.windowClass->name;
    info.title = window.title;
    return display.CreateWindow(info);
}

// False if the program refuses the window, which is then gone.
bool SendCreation(HWND window, CREATESTRUCTA* create) {
    const auto parameter = reinterpret_cast<LPARAM>(create);
    if (!CallProcedure(window, WM_NCCREATE, 0, parameter)) {
        bool there = false;
        {
            DispatcherGuard guard(DispatcherLock());
            there = FindWindowState(guard, window) != nullptr;
        }
        if (there) CallProcedure(window, WM_NCDESTROY, 0, 0);
        ForgetWindowTree(window);
        return false;
    }
    if (CallProcedure(window, WM_CREATE, 0, parameter) == -1) {
        DestroyOnOwner(window);
        return false;
    }
    return IsWindow(window) != FALSE;
}

std::unique_ptr<Window> StateOf(const CREATESTRUCTA& create, std::shared_ptr<WindowClass> windowClass) {
    auto window = std::make_unique<Window>();
    const WNDCLASSA& info = windowClass->info;
    window->thread = CurrentThreadId();
    window->procedure = info.lpfnWndProc;
    window->instance = create.hInstance;
    window->style = static_cast<DWORD>(create.style) & ~WS_VISIBLE;
    window->exStyle = create.dwExStyle;
    window->extra.resize(static_cast<size_t>(info.cbWndExtra));
    window->title = create.lpszName != nullptr ? create.lpszName : "";
    window->cursor = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(IDC_ARROW));
    window->windowClass = std::move(windowClass);
    return window;
}

// Makes the window on the display and puts it into the tree; the place that it got is left in `create`.
HWND MakeWindow(CREATESTRUCTA* create) {
    std::shared_ptr<WindowClass> windowClass;
    const uint32_t thread = CurrentThreadId();
    {
        DispatcherGuard guard(DispatcherLock());
        QueueOf(guard, thread);
        if (create->lpszClass != nullptr) windowClass = FindClass(guard, create->lpszClass, create->hInstance);
    }
    if (!windowClass) {
        SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
        return nullptr;
    }
    std::unique_ptr<Window> window = StateOf(*create, std::move(windowClass));
    TerminationDeferral deferral;
    DisplayUse display;
    window->display = &*display;
    if (!ResolveParent(*create, *display, window.get())) return nullptr;
    window->bounds = PlaceOf(*create, display->ScreenSize());
    window->id = window->TopLevel() ? 0 : reinterpret_cast<LONG_PTR>(create->hMenu);
    create->x = window->bounds.left;
    create->y = window->bounds.top;
    create->cx = window->Width();
    create->cy = window->Height();
    const HWND handle = HandleOf(MakeOnDisplay(*display, *window));
    if (handle == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    window->handle = handle;
    TellExecutionState(*display);
    if (window->TopLevel() && (window->exStyle & WS_EX_TOPMOST) != 0) display->SetAlwaysOnTop(IdOf(handle), true);
    DispatcherGuard guard(DispatcherLock());
    InsertWindow(guard, std::move(window));
    return handle;
}

HWND CreateOnOwner(CREATESTRUCTA create) {
    const HWND window = MakeWindow(&create);
    if (window == nullptr) return nullptr;
    RaiseSiblings(window);
    if (!SendCreation(window, &create)) return nullptr;
    SendSize(window);
    SendMove(window);
    if ((static_cast<DWORD>(create.style) & WS_VISIBLE) != 0) ShowWindow(window, SW_SHOW);
    return IsWindow(window) ? window : nullptr;
}

}  // namespace
}  // namespace tdkp

TDKP_API HWND CreateWindowExA(DWORD exStyle, LPCSTR className, LPCSTR title, DWORD style, INT x, INT y, INT width,
                              INT height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter) {
    return tdkp::CreateOnOwner(CREATESTRUCTA{parameter, instance, menu, parent, height, width, y, x,
                                             static_cast<LONG>(style), title, className, exStyle});
}
