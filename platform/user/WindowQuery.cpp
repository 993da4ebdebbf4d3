// Relations, states and places of windows.
#include <algorithm>
#include <cstring>

#include "platform/user/DisplayUse.h"
#include "platform/user/Focus.h"
#include "platform/user/Paint.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowRaster.h"
#include "platform/user/WindowTable.h"

#include <unistd.h>

namespace tdkp {
namespace {

// Screen rectangle of a window that the layer didn't make.
bool ForeignRect(HWND window, RECT* rect) {
    if (window == nullptr) return false;
    DisplayUse display;
    return display->GetScreenRect(IdOf(window), rect);
}

// The same of a window of the layer inside such a window; kept for ScreenOriginTold.
bool TellPlace(HWND root, RECT* rect) {
    if (!ForeignRect(root, rect)) return false;
    DispatcherGuard guard(DispatcherLock());
    if (Window* state = FindWindowState(guard, root)) state->toldRect = *rect;
    return true;
}

// The whole window, or its client area; in a foreign window where it was last told to be, or is now.
bool ScreenRect(HWND window, RECT* rect, bool client, bool asTold = false) {
    RECT root = {0, 0, 0, 0}, onScreen = {0, 0, 0, 0};
    HWND inForeign = nullptr;
    LONG rootEdge = 0;
    bool found = false;
    {
        DispatcherGuard guard(DispatcherLock());
        if (Window* state = FindWindowState(guard, window)) {
            found = true;
            const POINT offset = OffsetInRoot(guard, *state);
            const Window* rootState = RootOf(guard, *state);
            root = rootState->bounds;
            if (rootState->foreignParent != nullptr) inForeign = rootState->handle;
            if (asTold) onScreen = rootState->toldRect;
            rootEdge = rootState->edge;
            *rect = state->Client();
            if (!client) InflateRect(rect, state->edge, state->edge);
            OffsetRect(rect, offset.x, offset.y);
        }
    }
    if (!found && window == GetDesktopWindow()) {
        const SIZE screen = DisplayUse()->ScreenSize();
        *rect = RECT{0, 0, screen.cx, screen.cy};
        return true;
    }
    if (!found) return ForeignRect(window, rect);
    if (inForeign != nullptr && (!IsRectEmpty(&onScreen) || TellPlace(inForeign, &onScreen))) root = onScreen;
    OffsetRect(rect, root.left + rootEdge, root.top + rootEdge);
    return true;
}

bool Fail() {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return false;
}

HWND Sibling(const DispatcherGuard& guard, const Window& window, UINT relation) {
    const Window* parent = FindWindowState(guard, window.parent);
    if (parent == nullptr) return nullptr;
    const std::vector<HWND>& order = parent->children;
    const auto self = std::find(order.begin(), order.end(), window.handle);
    switch (relation) {
        case GW_HWNDFIRST:
            return order.front();
        case GW_HWNDLAST:
            return order.back();
        case GW_HWNDNEXT:
            return self + 1 < order.end() ? *(self + 1) : nullptr;
        default:
            return self != order.begin() ? *(self - 1) : nullptr;
    }
}

}  // namespace

POINT ScreenOriginTold(HWND window) {
    RECT rect = {0, 0, 0, 0};
    ScreenRect(window, &rect, true, true);
    return POINT{rect.left, rect.top};
}

}  // namespace tdkp

using tdkp::DispatcherGuard;
using tdkp::DispatcherLock;
using tdkp::FindWindowState;
using tdkp::Window;

TDKP_API BOOL IsWindow(HWND window) {
    {
        DispatcherGuard guard(DispatcherLock());
        if (FindWindowState(guard, window) != nullptr) return TRUE;
        if (window == nullptr || !tdkp::AnyWindow(guard)) return FALSE;
    }
    return tdkp::DisplayUse()->IsForeign(tdkp::IdOf(window));
}

TDKP_API BOOL IsWindowVisible(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    return state != nullptr && tdkp::IsShown(guard, *state);
}

TDKP_API BOOL IsWindowEnabled(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    return state != nullptr && (state->style & WS_DISABLED) == 0;
}

TDKP_API BOOL EnableWindow(HWND window, BOOL enable) {
    return tdkp::RunOnOwner(window, [window, enable] {
               bool was = false;
               {
                   DispatcherGuard guard(DispatcherLock());
                   Window* state = FindWindowState(guard, window);
                   if (state == nullptr) return LRESULT{FALSE};
                   was = (state->style & WS_DISABLED) != 0;
                   state->style = enable ? state->style & ~WS_DISABLED : state->style | WS_DISABLED;
               }
               if (was == (enable != FALSE)) tdkp::CallProcedure(window, WM_ENABLE, enable != FALSE, 0);
               if (!enable && GetFocus() == window) SetFocus(nullptr);
               return LRESULT{was};
           }) != 0;
}

TDKP_API BOOL IsChild(HWND parent, HWND window) {
    DispatcherGuard guard(DispatcherLock());
    return parent != nullptr && tdkp::IsInside(guard, parent, window);
}

TDKP_API HWND GetParent(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    if (state == nullptr) return tdkp::Fail(), nullptr;
    if (state->parent != nullptr || state->foreignParent != nullptr)
        return state->parent != nullptr ? state->parent : state->foreignParent;
    return (state->style & WS_POPUP) != 0 ? state->owner : nullptr;
}

TDKP_API HWND GetWindow(HWND window, UINT relation) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    if (state == nullptr) return tdkp::Fail(), nullptr;
    if (relation == GW_CHILD) return state->children.empty() ? nullptr : state->children.front();
    return relation == GW_OWNER ? state->owner : tdkp::Sibling(guard, *state, relation);
}

// No window of the display; its number is never one of a window.
TDKP_API HWND GetDesktopWindow() {
    return tdkp::HandleOf(0x10010);
}

TDKP_API HWND GetDlgItem(HWND parent, INT id) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, parent);
    for (const HWND child : state != nullptr ? state->children : std::vector<HWND>()) {
        if (static_cast<INT>(FindWindowState(guard, child)->id) == id) return child;
    }
    return tdkp::Fail(), nullptr;
}

TDKP_API INT GetDlgCtrlID(HWND window) {
    return static_cast<INT>(GetWindowLongPtrA(window, GWLP_ID));
}

TDKP_API DWORD GetWindowThreadProcessId(HWND window, DWORD* process) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    if (state == nullptr) return tdkp::Fail(), 0;
    if (process != nullptr) *process = static_cast<DWORD>(getpid());
    return state->thread;
}

TDKP_API BOOL GetClientRect(HWND window, RECT* rect) {
    if (rect == nullptr) return FALSE;
    {
        DispatcherGuard guard(DispatcherLock());
        if (const Window* state = FindWindowState(guard, window)) {
            *rect = state->Client();
            return TRUE;
        }
    }
    if (!tdkp::ScreenRect(window, rect, true)) return tdkp::Fail();
    OffsetRect(rect, -rect->left, -rect->top);
    return TRUE;
}

TDKP_API BOOL GetWindowRect(HWND window, RECT* rect) {
    return rect != nullptr && (tdkp::ScreenRect(window, rect, false) || tdkp::Fail());
}

TDKP_API BOOL AdjustWindowRect(RECT* rect, DWORD, BOOL) {
    return rect != nullptr;
}

TDKP_API BOOL ClientToScreen(HWND window, POINT* point) {
    RECT rect;
    if (point == nullptr || !(tdkp::ScreenRect(window, &rect, true) || tdkp::Fail())) return FALSE;
    *point = POINT{point->x + rect.left, point->y + rect.top};
    return TRUE;
}

TDKP_API BOOL ScreenToClient(HWND window, POINT* point) {
    RECT rect;
    if (point == nullptr || !(tdkp::ScreenRect(window, &rect, true) || tdkp::Fail())) return FALSE;
    *point = POINT{point->x - rect.left, point->y - rect.top};
    return TRUE;
}
