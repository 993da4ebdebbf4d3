// Looking for a window by class and title.
#include "platform/kernel/PathText.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

bool Matches(const Window& window, const char* className, const char* title) {
    if (className && !EqualsIgnoringCase(window.windowClass->name, className)) return false;
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
