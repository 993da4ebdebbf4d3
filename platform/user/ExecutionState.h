// What the threads of the process need of the machine, and that the display learns of it.
#pragma once

#include <cstdint>

#include "platform/display/Display.h"

namespace tdkp {

// The first window of the process opens a display, which knows nothing yet.
void TellExecutionState(Display& display);
// The thread has ended and needs nothing any more.
void ForgetExecutionState(uint32_t thread);

}  // namespace tdkp
