// Where windows are, in which order, and whether they are shown.
#pragma once

#include "platform/user/WindowState.h"

namespace tdkp {

// The window manager made an icon of the window, or a window again. On its own thread.
void AnnounceIconified(HWND window, bool iconified);
// Takes over what the display reported of a top-level window. On the window's thread.
void TakeDisplayRect(HWND window);

// WM_MOVE and WM_SIZE with the place of the client area. On the window's thread.
void SendMove(HWND window);
void SendSize(HWND window);

// Brings the siblings above a child window into the display's order, if any of them meets it.
void RaiseSiblings(HWND window);

}  // namespace tdkp
