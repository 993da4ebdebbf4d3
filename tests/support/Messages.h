#pragma once

#include <windows.h>

namespace tdkviz::test {

// Serves all that waits for this thread.
inline void ServeMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

}  // namespace tdkviz::test
