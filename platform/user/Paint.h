// What of each window waits to be painted, and the painting that the layer does by itself.
#pragma once

#include "platform/user/WindowState.h"

namespace tdkp {

// Is something of this window to be painted, and would it be seen?
bool NeedsPaint(const DispatcherGuard& guard, const Window& window);

// Adds the rectangle to what is to be painted. A hidden window takes nothing: it's painted whole when shown.
void InvalidateState(DispatcherGuard& guard, Window& window, const RECT& rect, bool erase);
// The same for all of a window and of every window inside it.
void InvalidateTree(DispatcherGuard& guard, HWND window);

// Lets the window erase now what it would erase at its next WM_PAINT, so that nothing stale is seen until
// then. On the window's thread, without the lock.
void EraseNow(HWND window);
// Lets it erase this part of its client area; true if there is nothing left to erase in it.
bool ErasePart(HWND window, const RECT& part);

// Is the calling thread taking or giving back a context for the layer's own painting?
bool InsideLayerPaint();

// Answers to messages in DefWindowProcA.
LRESULT EraseByDefault(HWND window, HDC dc);
LRESULT PaintByDefault(HWND window);

}  // namespace tdkp
