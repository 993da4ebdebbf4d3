#include "src/support/ThreadLimits.h"

namespace tdkviz {

bool WaitForAnswer(HANDLE object) {
    const DWORD start = GetTickCount();
    for (DWORD elapsed = 0; elapsed <= kThreadAnswerLimit; elapsed = GetTickCount() - start) {
        const DWORD left = kThreadAnswerLimit - elapsed;
        const DWORD result = MsgWaitForMultipleObjects(1, &object, FALSE, left, QS_SENDMESSAGE);
        if (result != WAIT_OBJECT_0 + 1) return result == WAIT_OBJECT_0;
        // Looking serves what was sent; what was posted stays.
        MSG message;
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);
    }
    return false;
}

void EndThreadInTime(HANDLE thread) {
    if (!WaitForAnswer(thread)) TerminateThread(thread, kTerminatedExitCode);
}

}  // namespace tdkviz
