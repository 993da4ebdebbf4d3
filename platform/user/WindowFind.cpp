// Looking for a window by class and title, or by a place.
#include <strings.h>

#include "platform/user/DisplayUse.h"
#include "platform/user/WindowTable.h"

namespace tdkp {

namespace {

bool Matches(const Window& window, const char* className, const char* title) {
    if (className && strcasecmp(window.windowClass->name.c_str(), className) != 0) return false;
    return !title || window.title == title;
}

// The windows right below `parent`, the topmost first where their order is known.
std::vector<HWND> WindowsBelow(const DispatcherGuard& guard, HWND parent) {
    if (const Window* state = parent ? FindWindowState(guard, parent) : nullptr) return state->children;
    std::vector<HWND> below;
    ForEachWindow(guard, [&](const Window& window) {
        const bool isBelow = parent ? window.foreignParent == parent : !window.parent && !window.foreignParent;
        if (isBelow) below.push_back(window.handle);
    });
    return below;
}

}  // namespace

}  // namespace tdkp

TDKP_API HWND FindWindowExA(HWND parent, HWND after, LPCSTR className, LPCSTR title) {
    using namespace tdkp;
    const DispatcherGuard guard(DispatcherLock());
    bool passed = after == nullptr;
    for (const HWND handle : WindowsBelow(guard, parent)) {
        const Window* window = FindWindowState(guard, handle);
        if (passed && window && Matches(*window, className, title)) return handle;
        if (handle == after) passed = true;
    }
    return nullptr;
}

TDKP_API HWND WindowFromPoint(POINT point) {
    using namespace tdkp;
    {
        const DispatcherGuard guard(DispatcherLock());
        if (!AnyWindow(guard)) return nullptr;
    }
    const HWND outermost = HandleOf(DisplayUse()->WindowAt(point));
    POINT inside = point;
    if (outermost == nullptr || !ScreenToClient(outermost, &inside)) return nullptr;
    const DispatcherGuard guard(DispatcherLock());
    Window* state = FindWindowState(guard, outermost);
    return state != nullptr ? WindowAt(guard, *state, &inside) : nullptr;
}
