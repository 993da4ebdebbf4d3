// The server's cursors for the shapes of the IDC_ numbers, made when first asked for. Any thread.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <unordered_map>

#include "platform/display/x11/X11Connection.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {

class X11Cursors {
public:
    explicit X11Cursors(const X11Connection& connection) : connection_(connection) {}

    // 0 gives a cursor that shows nothing, an unknown shape the arrow.
    xcb_cursor_t Get(uint32_t shape);

private:
    xcb_cursor_t MakeEmpty() const;
    xcb_cursor_t MakeGlyph(uint16_t glyph);

    const X11Connection& connection_;
    LayerMutex mutex_;
    std::unordered_map<uint32_t, xcb_cursor_t> cursors_;  // guarded by mutex_
    xcb_font_t font_ = 0;                                 // guarded by mutex_
};

}  // namespace tdkp
