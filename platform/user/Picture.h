// Holding, making and dropping the picture behind a window. Whoever holds a picture may use its pixels; see
// WindowState.h. On the calling thread, without the dispatcher's lock unless a guard is an argument.
#pragma once

#include "platform/user/WindowState.h"

namespace tdkp {

// Waits until no other thread holds the picture, then takes it for `thread`, the caller. Null if the window
// has gone. Nests.
Window* HoldPicture(DispatcherGuard& guard, HWND window, uint32_t thread);
// Lets it go again, after showing what the display asked for meanwhile. The guard is released in between.
void LetGoPicture(DispatcherGuard& guard, Window& window);

// As HoldPicture, for a caller that must not wait: false if somebody holds it.
bool TryHoldPicture(DispatcherGuard& guard, Window& window, uint32_t thread);

// Makes the held picture as large as the client area, keeping its contents; the rest is black. The guard is
// released in between. False if the window has no picture.
bool FitPicture(DispatcherGuard& guard, Window& window);
// Gives the memory of a held picture back.
void DropHeldPicture(DispatcherGuard& guard, Window& window);

// Takes away what an ended thread held.
void ForgetHolds(WindowPicture& picture, uint32_t thread);

}  // namespace tdkp
