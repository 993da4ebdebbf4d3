// A connection that carries nothing but pictures in shared memory. The server's word that it has read one comes
// back to the thread that waits for it: no second request asks for it, and the display's thread sleeps on.
#pragma once

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <string>

#include "platform/kernel/Dispatcher.h"

namespace tdkp {

class X11PutChannel {
public:
    // Opened by the first put, to the server of this name.
    explicit X11PutChannel(std::string display) : display_(std::move(display)) {}
    ~X11PutChannel();
    X11PutChannel(const X11PutChannel&) = delete;
    X11PutChannel& operator=(const X11PutChannel&) = delete;

    // Comes back when the server has carried it out, or never will. Window, context and segment may be of
    // another connection, which has waited for them to exist. What that connection asked meanwhile for the
    // window may come before or behind this; the server asks again for what it uncovers. False if there is no
    // such connection. Any thread.
    bool Put(const xcb_shm_put_image_request_t& what);

private:
    bool Open();

    const std::string display_;
    LayerMutex lock_;
    xcb_connection_t* connection_ = nullptr;  // guarded by lock_, as is whose answer comes next
};

}  // namespace tdkp
