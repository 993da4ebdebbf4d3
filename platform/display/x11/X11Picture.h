// The picture of one window: a segment shared with the server, or plain memory where none can be shared.
#pragma once

#include <xcb/shm.h>

#include <memory>

#include <windef.h>

#include "platform/display/x11/X11Connection.h"
#include "platform/gdi/Raster.h"

namespace tdkp {

class X11Picture {
public:
    // Zeroed. Null if there is no memory for it, or for a size that a window can't have.
    static std::shared_ptr<X11Picture> Make(std::shared_ptr<X11Connection> connection, int width, int height);
    ~X11Picture();
    X11Picture(const X11Picture&) = delete;
    X11Picture& operator=(const X11Picture&) = delete;

    const Raster& Pixels() const { return raster_; }
    // Shows this part of the picture at the same place of the window, and returns when the memory may
    // be written again. Any thread.
    void Put(xcb_window_t window, const RECT& rect) const;

private:
    explicit X11Picture(std::shared_ptr<X11Connection> connection) : connection_(std::move(connection)) {}
    bool Share(size_t bytes);
    void PutShared(xcb_window_t window, const RECT& rect) const;
    void PutSlices(xcb_window_t window, const RECT& rect) const;

    const std::shared_ptr<X11Connection> connection_;
    Raster raster_;
    xcb_shm_seg_t segment_ = 0;  // 0: `plain_` holds the pixels
    void* shared_ = nullptr;
    std::unique_ptr<uint8_t[]> plain_;
};

}  // namespace tdkp
