// Activation, keyboard focus and mouse capture. On the thread that owns the window, without the lock, where
// nothing else is told.
#pragma once

#include "platform/user/WindowState.h"

namespace tdkp {

// Makes a top-level window, or one inside a foreign window, the active one; its focus comes back.
void Activate(HWND window);
void Deactivate(HWND window);

// The control gets the focus when its window becomes the active one.
void FocusWhenActive(HWND control);

// A window is about to be hidden or destroyed: focus, capture and activation leave it and all inside it.
void LeaveWindow(HWND window);

// The window is no more. Any thread.
void ForgetActive(const DispatcherGuard& guard, HWND window);

}  // namespace tdkp
