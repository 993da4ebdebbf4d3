#include "platform/display/x11/X11ScreenSaver.h"

#include <sys/uio.h>
#include <xcb/xcbext.h>

#include <cstdint>

namespace tdkp {
namespace {

xcb_extension_t extension = {"MIT-SCREEN-SAVER", 0};

// The library fills in the first four bytes.
struct SuspendRequest {
    static constexpr uint8_t kOpcode = 5;
    uint32_t head = 0;
    uint32_t suspend = 0;
};
static_assert(sizeof(SuspendRequest) == 8);

}  // namespace

void SuspendX11ScreenSaver(xcb_connection_t* connection, bool suspend) {
    const xcb_query_extension_reply_t* served = xcb_get_extension_data(connection, &extension);
    if (served == nullptr || served->present == 0) return;
    SuspendRequest request;
    request.suspend = suspend ? 1 : 0;
    const xcb_protocol_request_t protocol = {1, &extension, SuspendRequest::kOpcode, 1};
    // The library uses the two places in front of the first.
    iovec parts[3] = {};
    parts[2] = {&request, sizeof request};
    xcb_send_request(connection, 0, &parts[2], &protocol);
}

}  // namespace tdkp
