// The tree of all windows, and how to walk it. Everything here wants the dispatcher's lock.
#pragma once

#include "platform/user/WindowState.h"

namespace tdkp {

// Null if there is no such window (any more).
Window* FindWindowState(const DispatcherGuard& guard, HWND window);

// Puts the window into the table, below its siblings; it takes the state over.
Window* InsertWindow(DispatcherGuard& guard, std::unique_ptr<Window> window);
// Takes the window out of the table and off its parent. Its children must have gone.
void RemoveWindow(DispatcherGuard& guard, HWND window);

void ForEachWindow(const DispatcherGuard& guard, void (*visit)(void* context, Window& window), void* context);
template <typename Visit>
void ForEachWindow(const DispatcherGuard& guard, Visit visit) {
    ForEachWindow(
        guard, [](void* context, Window& window) { (*static_cast<Visit*>(context))(window); }, &visit);
}

// The outermost window of the layer that holds this one.
Window* RootOf(const DispatcherGuard& guard, Window& window);
// Position of the window's client area inside its root's.
POINT OffsetInRoot(const DispatcherGuard& guard, const Window& window);
// Upper left corner of the whole window on the display, in its parent's window there.
POINT PlaceOnDisplay(const DispatcherGuard& guard, const Window& window);
// The window's children as they are seen, the topmost first.
std::vector<HWND> StackOf(const DispatcherGuard& guard, const Window& window);
// Is it shown, and every parent of it?
bool IsShown(const DispatcherGuard& guard, const Window& window);
bool IsInside(const DispatcherGuard& guard, HWND parent, HWND window);
// The innermost shown window under the point, which is moved into that window's coordinates.
HWND WindowAt(const DispatcherGuard& guard, Window& window, POINT* point);
// The window and all below it, parents before children, lower siblings first.
std::vector<HWND> TreeOf(const DispatcherGuard& guard, HWND window);

// Does any window exist in this process?
bool AnyWindow(const DispatcherGuard& guard);

}  // namespace tdkp
