// What the server's key numbers mean.
#pragma once

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace tdkp {

struct X11Key {
    uint32_t virtualKey = 0;  // VK_ number, 0 for a key that has none
    uint32_t text = 0;        // the character that the key types, 0 if it types none
    bool altDown = false;
};

// Used by one thread, the display's.
class X11Keyboard {
public:
    // Takes the server's keymap, or the usual one where the server doesn't tell its own.
    explicit X11Keyboard(xcb_connection_t* connection);

    // `state` is the modifiers as key events carry them.
    X11Key Translate(xcb_keycode_t code, uint16_t state);
    // For the events that only the keyboard knows: takes over another keymap.
    void OnEvent(const xcb_generic_event_t& event);

private:
    struct Unref {
        void operator()(xkb_context* context) const { xkb_context_unref(context); }
        void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
        void operator()(xkb_state* state) const { xkb_state_unref(state); }
    };

    void Reload();
    uint32_t VirtualKeyOf(xcb_keycode_t code) const;

    xcb_connection_t* const connection_;
    std::unique_ptr<xkb_context, Unref> context_;
    std::unique_ptr<xkb_keymap, Unref> keymap_;
    std::unique_ptr<xkb_state, Unref> state_;
    std::optional<uint8_t> extensionEvent_;  // nothing where the server doesn't tell its keymap
};

}  // namespace tdkp
