// The layer's connection to an X server and what stays the same as long as it stands.
#pragma once

#include <xcb/xcb.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/display/x11/X11PutChannel.h"
#include "platform/display/x11/X11Visual.h"

namespace tdkp {

struct X11Atoms {
    xcb_atom_t wmProtocols, wmDeleteWindow, wmState, utf8String, netWmName, netWmPid, netWmPing, netWmState,
        netWmStateFullScreen, netWmStateAbove, netWmWindowType, netWmWindowTypeNormal, netWmWindowTypeDialog,
        netWmWindowTypePopupMenu, netSupportingWmCheck, netActiveWindow, motifWmHints, xdndAware, xdndEnter,
        xdndPosition, xdndStatus, xdndLeave, xdndDrop, xdndFinished, xdndSelection, xdndTypeList, xdndActionCopy,
        uriList;
};

// Requests that fail are not an error here: a foreign window may vanish at any moment. Any thread.
class X11Connection {
public:
    // The server that DISPLAY names. Null if there is none, or if nothing of it can be drawn on.
    static std::shared_ptr<X11Connection> Open();
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* Get() const { return connection_; }
    const xcb_screen_t& Screen() const { return *screen_; }
    const X11Visual& Visual() const { return visual_; }
    xcb_colormap_t Colormap() const { return colormap_; }
    const uint32_t* Palette() const { return visual_.format == PixelFormat::kIndexed8 ? palette_.data() : nullptr; }
    xcb_gcontext_t Gc() const { return gc_; }
    const X11Atoms& Atoms() const { return atoms_; }

    // An id for a window. It isn't one that an earlier connection of this process gave to a window, although
    // the server lets every connection count from the start: what is on its way for an old window must not
    // reach a new one.
    xcb_window_t MakeWindowId() const;

    void Flush() const { xcb_flush(connection_); }
    // Wakes whoever waits for the server: the connection is of no use after that.
    void Break() const;

    // Bytes of pixels that one request carries.
    uint32_t MaxPixelBytes() const { return maxPixelBytes_; }
    // Starts as whether the server has the extension; cleared by the first segment that it can't attach.
    std::atomic<bool> sharesMemory{false};
    // The way of pictures in shared memory.
    X11PutChannel& Puts() { return puts_; }

    // Does a window manager run that serves the _NET_ hints?
    bool HasWindowManager() const;
    // The window named by a property, 0 if there is none.
    xcb_window_t WindowProperty(xcb_window_t window, xcb_atom_t property) const;

private:
    X11Connection(xcb_connection_t* connection, const std::string& display, xcb_screen_t* screen,
                  const X11Visual& visual);
    void SkipUsedIds() const;
    void InternAtoms();
    void MakeGc();
    void AskForSharedMemory();
    // Comes back when the server has carried out all that was asked before.
    void WaitForServer() const;

    xcb_connection_t* const connection_;
    X11PutChannel puts_;
    xcb_screen_t* const screen_;
    const X11Visual visual_;
    xcb_colormap_t colormap_ = 0;
    tdkp::Palette palette_ = {};
    xcb_gcontext_t gc_ = 0;
    X11Atoms atoms_ = {};
    uint32_t maxPixelBytes_ = 0;
};

}  // namespace tdkp
