#include "platform/display/x11/X11PutChannel.h"

#include "platform/display/x11/X11Reply.h"

namespace tdkp {

X11PutChannel::~X11PutChannel() {
    if (connection_ != nullptr) xcb_disconnect(connection_);
}

bool X11PutChannel::Open() {
    if (connection_ == nullptr) connection_ = xcb_connect(display_.empty() ? nullptr : display_.c_str(), nullptr);
    return xcb_connection_has_error(connection_) == 0;
}

bool X11PutChannel::Put(const xcb_shm_put_image_request_t& what) {
    constexpr uint8_t kCompletionEvent = 1;
    const LayerGuard guard(lock_);
    if (!Open()) return false;
    const auto cookie =
        xcb_shm_put_image(connection_, what.drawable, what.gc, what.total_width, what.total_height, what.src_x,
                          what.src_y, what.src_width, what.src_height, what.dst_x, what.dst_y, what.depth, what.format,
                          kCompletionEvent, what.shmseg, what.offset);
    xcb_flush(connection_);
    // The answer is the event or, for a window that has gone, an error. Some events go to every client.
    for (;;) {
        const auto answer = X11Reply(xcb_wait_for_event(connection_));
        if (!answer) return false;
        if (answer->full_sequence == cookie.sequence) return true;
    }
}

}  // namespace tdkp
