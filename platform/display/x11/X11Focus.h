// Who has the keyboard. The server gives a key to the window under the pointer if that lies in the one that has the
// keyboard. So a window inside another client's asks for keys only while it has the keyboard itself: it would take its
// host's. Any thread; nothing is flushed.
#pragma once

#include <xcb/xcb.h>

namespace tdkp {

// What a window is told of. The outermost of this process's hear of the keyboard.
uint32_t X11EventsOf(bool outermost, bool hasKeys);

// For the outermost of this process's windows that can be seen.
void TakeX11Keyboard(xcb_connection_t* connection, xcb_window_t window);
// For one inside another client's, when the keyboard has come or gone.
void AskForX11Keys(xcb_connection_t* connection, xcb_window_t window, bool hasKeyboard);

}  // namespace tdkp
