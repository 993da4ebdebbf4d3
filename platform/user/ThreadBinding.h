// Ties the window room to the threads of the process: their waits see what comes for their windows, and what
// a thread leaves behind is taken away when it ends.
#pragma once

#include <cstdint>

namespace tdkp {

// Takes away the windows and the queue of a thread that has ended, without calling a window procedure.
void ForgetThread(uint32_t thread);

}  // namespace tdkp
