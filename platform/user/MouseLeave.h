// Which window the pointer is over, and who wants to know when it goes.
#pragma once

#include "platform/user/MessageQueue.h"

namespace tdkp {

// A mouse message for this window comes now.
void NoteHover(DispatcherGuard& guard, HWND window, DWORD time);
// The display says that the pointer has left this window. Any thread.
void NoteLeave(HWND window, DWORD time);

}  // namespace tdkp
