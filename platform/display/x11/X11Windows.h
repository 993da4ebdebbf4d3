// The windows that this process made on the server.
#pragma once

#include <xcb/xcb.h>

#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/display/Display.h"
#include "platform/display/x11/X11Picture.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {

struct X11Place {
    int x = 0, y = 0, width = 1, height = 1;
    bool operator==(const X11Place&) const = default;
};

struct X11Window {
    WindowId parent = 0;  // 0 for the root; a window that isn't in the table is a foreign one
    WindowId owner = 0;   // of a top-level window
    bool topLevel = true;
    bool managed = true;  // a top-level window that a window manager, if there is one, looks after
    bool resizable = true;
    X11Place place;         // as last asked for, or as last told by the server
    X11Place told;          // as last reported to the sink
    uint32_t placedAt = 0;  // the request that last asked for a place; what was told before it is stale
    X11Place beforeFullScreen;
    bool shown = false;      // asked to be
    bool mapped = false;     // as the server told
    bool iconified = false;  // the window manager took a window away that is to be shown
    bool fullScreen = false;
    bool alwaysOnTop = false;
    bool reparented = false;  // the window manager has put it into a frame
    bool focusWhenMapped = false;
    bool gone = false;  // the server has destroyed it; its owner hasn't yet
    std::shared_ptr<X11Picture> picture;
};

// Any thread. Nothing that is called under its lock may call a sink.
class X11Windows {
public:
    void Add(WindowId id, X11Window window) {
        const LayerGuard guard(mutex_);
        windows_[id] = std::move(window);
    }

    // Gives what the table held; its picture is let go by whoever drops the result.
    std::unique_ptr<X11Window> Remove(WindowId id);

    // Runs `use(X11Window&)` under the lock. False if there is no such window.
    template <typename Use>
    bool With(WindowId id, Use&& use) {
        const LayerGuard guard(mutex_);
        const auto found = windows_.find(id);
        if (found == windows_.end()) return false;
        use(found->second);
        return true;
    }

    bool Has(WindowId id) const {
        const LayerGuard guard(mutex_);
        return windows_.count(id) != 0;
    }

    // The outermost window of this process around `id`: the one that has the keyboard for all inside it.
    WindowId Outermost(WindowId id) const;
    std::vector<WindowId> All() const;
    std::vector<WindowId> OwnedBy(WindowId id) const;
    // The server destroys with a window all that is inside it.
    void MarkInsideGone(WindowId id);

private:
    mutable LayerMutex mutex_;
    std::unordered_map<WindowId, X11Window> windows_;  // guarded by mutex_
};

}  // namespace tdkp
