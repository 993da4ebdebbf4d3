// Activation, keyboard focus and mouse capture. All of it on the thread that owns the window, without the lock.
#pragma once

#include <windows.h>

namespace tdkp {

// Makes a top-level window, or one inside a foreign window, the active one; its focus comes back.
void Activate(HWND window);
void Deactivate(HWND window);

// A window is about to be hidden or destroyed: focus, capture and activation leave it and all inside it.
void LeaveWindow(HWND window);

}  // namespace tdkp
