// What a top-level window tells the window manager, by the conventions that every manager keeps (ICCCM)
// and those of the desktops (EWMH). Any thread.
#pragma once

#include <string>

#include "platform/display/x11/X11Connection.h"
#include "platform/display/x11/X11Windows.h"

namespace tdkp {

// Class, title, protocols, process, kind, frame and owner.
void WriteX11Identity(const X11Connection& connection, xcb_window_t window, const DisplayWindowInfo& info);
void WriteX11Title(const X11Connection& connection, xcb_window_t window, const std::string& title);
// The place is that of the client area; a fixed size is told as the only one.
void WriteX11SizeHints(const X11Connection& connection, xcb_window_t window, const X11Window& state);

// Full screen and always on top: as the state to start with for a window that isn't shown yet...
void WriteX11State(const X11Connection& connection, xcb_window_t window, const X11Window& state);
// ...and as a request to the manager for one that is.
void AskX11State(const X11Connection& connection, xcb_window_t window, xcb_atom_t state, bool on);
void AskX11Activation(const X11Connection& connection, xcb_window_t window);
// A window that is hidden also withdraws from the manager, minimised or not.
void AskX11Withdrawal(const X11Connection& connection, xcb_window_t window);

}  // namespace tdkp
