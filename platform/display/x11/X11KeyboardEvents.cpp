#include "platform/display/x11/X11KeyboardEvents.h"

#include <sys/uio.h>
#include <xcb/xcbext.h>

namespace tdkp {
namespace {

xcb_extension_t extension = {"XKEYBOARD", 0};

constexpr uint16_t kCoreKeyboard = 0x100;
constexpr uint8_t kNewKeyboardNotify = 0;
constexpr uint8_t kMapNotify = 1;
constexpr uint16_t kKeymapEvents = 1 << kNewKeyboardNotify | 1 << kMapNotify;
constexpr uint16_t kAllMapParts = 0xFF;
constexpr uint32_t kDetectableAutoRepeat = 1 << 0;

// The library fills in the first four bytes.
struct SelectEventsRequest {
    static constexpr uint8_t kOpcode = 1;
    uint32_t head = 0;
    uint16_t device = kCoreKeyboard;
    uint16_t affected = kKeymapEvents;
    uint16_t cleared = 0;
    uint16_t wholly = kKeymapEvents;
    uint16_t affectedMapParts = kAllMapParts;
    uint16_t mapParts = kAllMapParts;
};
static_assert(sizeof(SelectEventsRequest) == 16);

struct PerClientFlagsRequest {
    static constexpr uint8_t kOpcode = 21;
    uint32_t head = 0;
    uint16_t device = kCoreKeyboard;
    uint16_t unused = 0;
    uint32_t affected = kDetectableAutoRepeat;
    uint32_t flags = kDetectableAutoRepeat;
    uint32_t controls[3] = {};
};
static_assert(sizeof(PerClientFlagsRequest) == 28);

// Gives the request's number.
template <typename Request>
unsigned int Send(xcb_connection_t* connection, Request request, bool answered) {
    const xcb_protocol_request_t protocol = {1, &extension, Request::kOpcode, static_cast<uint8_t>(answered ? 0 : 1)};
    // The library uses the two places in front of the first.
    iovec parts[3] = {};
    parts[2] = {&request, sizeof request};
    return xcb_send_request(connection, 0, &parts[2], &protocol);
}

}  // namespace

std::optional<uint8_t> AskForX11KeyboardEvents(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* served = xcb_get_extension_data(connection, &extension);
    if (served == nullptr || served->present == 0) return std::nullopt;
    Send(connection, SelectEventsRequest(), false);
    xcb_discard_reply(connection, Send(connection, PerClientFlagsRequest(), true));
    xcb_flush(connection);
    return served->first_event;
}

bool IsX11KeymapChange(const xcb_generic_event_t& event) {
    // Which of the extension's events it is stands where others have their detail.
    return event.pad0 == kNewKeyboardNotify || event.pad0 == kMapNotify;
}

}  // namespace tdkp
