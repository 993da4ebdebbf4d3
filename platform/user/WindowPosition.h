// Where windows are, in which order, and whether they are shown.
#pragma once

#include "platform/user/WindowState.h"

namespace tdkp {

// Of the calling thread's own window, which stays while the thread is in here. Null if it has gone.
Display* DisplayOf(HWND window);

// The window manager made an icon of the window, or a window again. On its own thread.
void AnnounceIconified(HWND window, bool iconified);
// Takes over what the display reported of a top-level window. On the window's thread.
void TakeDisplayRect(HWND window);

// WM_MOVE and WM_SIZE with the place of the client area. On the window's thread.
void SendMove(HWND window);
void SendSize(HWND window);

// The upper left corner for a box of this size so that all of it is on the screen, or its upper left part if there is
// no room for it.
POINT OntoScreen(POINT corner, SIZE size, SIZE screen);

// Brings the siblings above a child window into the display's order, if any of them meets it.
void RaiseSiblings(HWND window);

}  // namespace tdkp
