// What the display's thread asks of the keyboard extension (the published XKB protocol) beside the keymap.
#pragma once

#include <xcb/xcb.h>

#include <optional>

namespace tdkp {

// Lets a key that is held down come as one press after the other, without releases in between, and asks to
// be told when the keymap changes. Gives the number of the extension's events, nothing if it isn't served.
std::optional<uint8_t> AskForX11KeyboardEvents(xcb_connection_t* connection);

// Does this event of the extension say that there is another keymap?
bool IsX11KeymapChange(const xcb_generic_event_t& event);

}  // namespace tdkp
