#include "platform/display/x11/X11Keyboard.h"

#include <windows.h>
#include <xkbcommon/xkbcommon-x11.h>

#include "platform/display/x11/X11KeyboardEvents.h"

namespace tdkp {
namespace {

struct NamedKey {
    xkb_keysym_t sym;
    uint32_t virtualKey;
};

constexpr NamedKey kKeys[] = {
    {XKB_KEY_space, VK_SPACE},
    {XKB_KEY_Return, VK_RETURN},
    {XKB_KEY_KP_Enter, VK_RETURN},
    {XKB_KEY_Escape, VK_ESCAPE},
    {XKB_KEY_Tab, VK_TAB},
    {XKB_KEY_ISO_Left_Tab, VK_TAB},
    {XKB_KEY_BackSpace, VK_BACK},
    {XKB_KEY_Delete, VK_DELETE},
    {XKB_KEY_Insert, VK_INSERT},
    {XKB_KEY_Home, VK_HOME},
    {XKB_KEY_End, VK_END},
    {XKB_KEY_Prior, VK_PRIOR},
    {XKB_KEY_Next, VK_NEXT},
    {XKB_KEY_Left, VK_LEFT},
    {XKB_KEY_Up, VK_UP},
    {XKB_KEY_Right, VK_RIGHT},
    {XKB_KEY_Down, VK_DOWN},
    {XKB_KEY_KP_Delete, VK_DELETE},
    {XKB_KEY_KP_Insert, VK_INSERT},
    {XKB_KEY_KP_Home, VK_HOME},
    {XKB_KEY_KP_End, VK_END},
    {XKB_KEY_KP_Prior, VK_PRIOR},
    {XKB_KEY_KP_Next, VK_NEXT},
    {XKB_KEY_KP_Left, VK_LEFT},
    {XKB_KEY_KP_Up, VK_UP},
    {XKB_KEY_KP_Right, VK_RIGHT},
    {XKB_KEY_KP_Down, VK_DOWN},
    {XKB_KEY_KP_Multiply, VK_MULTIPLY},
    {XKB_KEY_KP_Add, VK_ADD},
    {XKB_KEY_KP_Subtract, VK_SUBTRACT},
    {XKB_KEY_KP_Decimal, VK_DECIMAL},
    {XKB_KEY_KP_Divide, VK_DIVIDE},
    {XKB_KEY_Shift_L, VK_SHIFT},
    {XKB_KEY_Shift_R, VK_SHIFT},
    {XKB_KEY_Control_L, VK_CONTROL},
    {XKB_KEY_Control_R, VK_CONTROL},
    {XKB_KEY_Alt_L, VK_MENU},
    {XKB_KEY_Alt_R, VK_MENU},
    {XKB_KEY_Meta_L, VK_MENU},
    {XKB_KEY_Meta_R, VK_MENU},
    {XKB_KEY_ISO_Level3_Shift, VK_MENU},
    {XKB_KEY_Super_L, VK_LWIN},
    {XKB_KEY_Super_R, VK_RWIN},
    {XKB_KEY_Menu, VK_APPS},
    {XKB_KEY_Pause, VK_PAUSE},
    {XKB_KEY_Break, VK_CANCEL},
    {XKB_KEY_Print, VK_SNAPSHOT},
    {XKB_KEY_Caps_Lock, VK_CAPITAL},
    {XKB_KEY_Num_Lock, VK_NUMLOCK},
    {XKB_KEY_Scroll_Lock, VK_SCROLL},
    {XKB_KEY_plus, VK_OEM_PLUS},
    {XKB_KEY_equal, VK_OEM_PLUS},
    {XKB_KEY_minus, VK_OEM_MINUS},
    {XKB_KEY_comma, VK_OEM_COMMA},
    {XKB_KEY_period, VK_OEM_PERIOD},
    {XKB_KEY_semicolon, VK_OEM_1},
    {XKB_KEY_slash, VK_OEM_2},
    {XKB_KEY_grave, VK_OEM_3},
    {XKB_KEY_bracketleft, VK_OEM_4},
    {XKB_KEY_backslash, VK_OEM_5},
    {XKB_KEY_bracketright, VK_OEM_6},
    {XKB_KEY_apostrophe, VK_OEM_7},
};

// Letters and digits are their own virtual keys; the function keys and the pad's digits follow each other.
uint32_t VirtualKeyOfSym(xkb_keysym_t sym) {
    if (sym >= XKB_KEY_a && sym <= XKB_KEY_z) return sym - XKB_KEY_a + 'A';
    if ((sym >= XKB_KEY_A && sym <= XKB_KEY_Z) || (sym >= XKB_KEY_0 && sym <= XKB_KEY_9)) return sym;
    if (sym >= XKB_KEY_F1 && sym <= XKB_KEY_F12) return sym - XKB_KEY_F1 + VK_F1;
    if (sym >= XKB_KEY_KP_0 && sym <= XKB_KEY_KP_9) return sym - XKB_KEY_KP_0 + VK_NUMPAD0;
    for (const NamedKey& key : kKeys) {
        if (key.sym == sym) return key.virtualKey;
    }
    return 0;
}

constexpr uint16_t kRealModifiers = 0xFF;
constexpr int kGroupShift = 13;
constexpr int kGroupMask = 3;
constexpr uint32_t kDeleteCharacter = 0x7F;

}  // namespace

X11Keyboard::X11Keyboard(xcb_connection_t* connection)
    : connection_(connection), context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS)) {
    const bool served =
        xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr) == 1;
    // Before the keymap is read, so that no change is missed.
    if (served) extensionEvent_ = AskForX11KeyboardEvents(connection);
    if (context_) xkb_context_set_log_level(context_.get(), XKB_LOG_LEVEL_CRITICAL);
    Reload();
}

void X11Keyboard::OnEvent(const xcb_generic_event_t& event) {
    constexpr uint8_t kSentByClient = 0x80;
    const uint8_t type = event.response_type & ~kSentByClient;
    if (type == XCB_MAPPING_NOTIFY || (type == extensionEvent_ && IsX11KeymapChange(event))) Reload();
}

void X11Keyboard::Reload() {
    if (!context_) return;
    xkb_keymap* keymap = nullptr;
    const int32_t device = extensionEvent_ ? xkb_x11_get_core_keyboard_device_id(connection_) : -1;
    if (device >= 0)
        keymap = xkb_x11_keymap_new_from_device(context_.get(), connection_, device, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (keymap == nullptr) keymap = xkb_keymap_new_from_names(context_.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (keymap == nullptr) return;
    state_.reset(xkb_state_new(keymap));
    keymap_.reset(keymap);
}

X11Key X11Keyboard::Translate(xcb_keycode_t code, uint16_t state) {
    X11Key key;
    key.altDown = (state & XCB_MOD_MASK_1) != 0;
    if (!state_) return key;
    xkb_state_update_mask(state_.get(), state & kRealModifiers, 0, 0, 0, 0,
                          static_cast<xkb_layout_index_t>(state >> kGroupShift & kGroupMask));
    key.virtualKey = VirtualKeyOf(code);
    if (key.virtualKey != VK_DELETE) key.text = xkb_state_key_get_utf32(state_.get(), code);
    if (key.text == kDeleteCharacter && key.virtualKey == VK_BACK) key.text = '\b';
    return key;
}

uint32_t X11Keyboard::VirtualKeyOf(xcb_keycode_t code) const {
    // The pad's keys depend on the state: digits with Num Lock, else the cursor's.
    const xkb_keysym_t current = xkb_state_key_get_one_sym(state_.get(), code);
    if (current >= XKB_KEY_KP_Space && current <= XKB_KEY_KP_9) {
        if (const uint32_t virtualKey = VirtualKeyOfSym(current)) return virtualKey;
    }
    // Others have one number however they are shifted. What the key types unshifted in the layout in use
    // comes first, then shifted (digits on some layouts), then other layouts (Latin letters beside others).
    const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(keymap_.get(), code);
    const xkb_layout_index_t inUse = xkb_state_key_get_layout(state_.get(), code);
    for (xkb_layout_index_t step = 0; step < layouts; ++step) {
        const xkb_layout_index_t layout = (inUse == XKB_LAYOUT_INVALID ? step : inUse + step) % layouts;
        const xkb_level_index_t levels = xkb_keymap_num_levels_for_key(keymap_.get(), code, layout);
        for (xkb_level_index_t level = 0; level < levels && level < 2; ++level) {
            const xkb_keysym_t* syms = nullptr;
            const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), code, layout, level, &syms);
            const uint32_t virtualKey = count == 1 ? VirtualKeyOfSym(syms[0]) : 0;
            if (virtualKey != 0) return virtualKey;
        }
    }
    return 0;
}

}  // namespace tdkp
