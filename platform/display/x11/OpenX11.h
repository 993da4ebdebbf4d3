// The way to the X server's display, for those who need not know what it is made of.
#pragma once

#include <memory>

#include "platform/display/Display.h"

namespace tdkp {

// The server that DISPLAY names. Null if it can't be connected to or shows nothing that this layer can draw.
std::unique_ptr<Display> OpenX11Display(DisplaySink& sink);

// Would OpenX11Display find its server? Connects and lets go again.
bool CanOpenX11Display();

// Is the caller the thread that reads the server's events (inside a call of the sink)?
bool IsX11Thread();

// On that thread only: ends it as soon as the sink has returned. The display itself is then destroyed by another
// thread.
void AskX11ThreadToEnd();

}  // namespace tdkp
