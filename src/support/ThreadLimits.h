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

// Waits for another thread's answer, kThreadAnswerLimit at most, and serves what other threads send to this one
// meanwhile: they may need their answer before they can give theirs. True if `object` was signalled.
bool WaitForAnswer(HANDLE object);

// Waits for a thread to end in the same way, and terminates it if it takes longer.
void EndThreadInTime(HANDLE thread);

}  // namespace tdkviz
