// The layer's ear at the display: turns what the display reports into messages and work for the threads
// that own the windows.
#pragma once

#include "platform/display/Display.h"

namespace tdkp {

DisplaySink& TheSink();

}  // namespace tdkp
