// Mouse and keys on their way from the display to the queue of the thread that gets them.
#pragma once

#include "platform/user/MessageQueue.h"

namespace tdkp {

struct KeyStroke {
    bool down;
    uint32_t virtualKey;
    uint32_t text;
    bool altDown;
    uint32_t time;
};

// Client coordinates of the window, and where that is on the screen; null: where the window's place says. `keys`
// carries the wheel's turn in its high word. Any thread.
void QueueMouse(HWND window, UINT message, WPARAM keys, POINT point, const POINT* screen, DWORD time);
void QueueKey(HWND window, const KeyStroke& stroke);

// From here on all mouse and keys of the process are for this window, a menu's, in its own coordinates; false if
// another menu has them. It ends by itself with the window.
bool BeginMenuInput(HWND menu);
bool EndMenuInput(HWND menu);  // false if it didn't have them
bool AnyMenuHasInput();

// What a thread knows of keys and pointer once it has taken this message out.
void NoteTaken(MessageQueue& queue, const QueuedMessage& message);
// Asks the window under the pointer for its cursor, after a mouse message was taken out. Without the lock.
void AskForCursor(const MSG& message);

}  // namespace tdkp
