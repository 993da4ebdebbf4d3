// Bounds that all threads of the add-on keep.
#pragma once

#include <windows.h>

namespace tdkviz {

// The longest wait for another thread's answer, in milliseconds.
inline constexpr DWORD kThreadAnswerLimit = 2000;
// The exit code of a thread that had to be terminated.
inline constexpr DWORD kTerminatedExitCode = static_cast<DWORD>(-1);
// The id field of a thread that isn't there.
inline constexpr DWORD kNoThreadId = static_cast<DWORD>(-1);

// Waits for a thread to end, and terminates it if it takes longer than kThreadAnswerLimit. True if it
// ended by itself.
inline bool EndThreadInTime(HANDLE thread) {
    if (WaitForSingleObject(thread, kThreadAnswerLimit) == WAIT_OBJECT_0) return true;
    TerminateThread(thread, kTerminatedExitCode);
    return false;
}

}  // namespace tdkviz
