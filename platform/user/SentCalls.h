// Work that runs on another thread while that thread looks for messages: sent messages, and what the layer
// itself must do on a window's own thread. Called without the dispatcher's lock.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>

namespace tdkp {

// Runs the work on the thread and waits for its end; serves meanwhile what others send to the caller.
// False if the thread has no queue or ends before the work is done; `result` is 0 then.
bool RunOnThread(uint32_t thread, std::function<LRESULT()> work, LRESULT* result);

// As above on the thread of a window, with the last error set if there is no such window.
LRESULT RunOnOwner(HWND window, std::function<LRESULT()> work);

// Hands the work over and doesn't wait. It is dropped if the thread ends first.
void PostWork(uint32_t thread, std::function<void()> work);

// Runs all that was sent to the calling thread.
void ServeSentCalls();

// Calls the window's procedure on the calling thread. 0 if the window has gone.
LRESULT CallProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace tdkp
