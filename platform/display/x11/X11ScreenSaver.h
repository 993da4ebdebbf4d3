// What the layer asks of the screen saver extension (the published MIT-SCREEN-SAVER protocol, version 1.1). Any thread.
#pragma once

#include <xcb/xcb.h>

namespace tdkp {

// Stops the timer of the server's screen saver and power saving, or lets it run again. Does nothing where the
// extension isn't served.
void SuspendX11ScreenSaver(xcb_connection_t* connection, bool suspend);

}  // namespace tdkp
