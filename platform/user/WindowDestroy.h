// The end of windows.
#pragma once

#include <windows.h>

namespace tdkp {

// On the window's own thread: WM_DESTROY to the window and then to those inside it, after that WM_NCDESTROY
// from the innermost outwards. Windows of other threads inside it are destroyed on those. False if the window
// has gone or is being destroyed already.
bool DestroyOnOwner(HWND window);

// Takes a window of an ended thread away, and what is inside it, without calling a procedure of that thread.
void ForgetWindowTree(HWND window);

}  // namespace tdkp
