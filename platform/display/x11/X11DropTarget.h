// Files dragged here from other programs, by the published XDND protocol. Every message is answered on the thread that
// reads events, from what the sink knows of its windows, so no window's own thread is waited for.
#pragma once

#include <xcb/xcb.h>

#include "platform/display/Display.h"
#include "platform/display/x11/X11Connection.h"

namespace tdkp {

constexpr uint32_t kX11DropVersion = 5;

// Used by one thread, the display's.
class X11DropTarget {
public:
    X11DropTarget(const X11Connection& connection, DisplaySink& sink) : connection_(connection), sink_(sink) {}

    // A message for a window of this process. False if it is none of a drag's.
    bool OnMessage(const xcb_client_message_event_t& event);
    // The source has handed over what was dropped, or refuses to. What comes in pieces is refused here.
    void OnSelection(const xcb_selection_notify_event_t& event);

private:
    void OnEnter(const xcb_client_message_event_t& event);
    void OnPosition(const xcb_client_message_event_t& event);
    void OnDrop(const xcb_client_message_event_t& event);
    bool IsOffered(xcb_window_t source, const xcb_client_message_event_t& event) const;
    std::vector<std::string> TakeFiles(const xcb_selection_notify_event_t& event) const;
    void Finish(bool taken);
    void Answer(xcb_atom_t type, bool yes, uint32_t flags) const;

    struct Drag {
        xcb_window_t source = 0;  // 0: there is none
        xcb_window_t target = 0;
        bool offersFiles = false;
        bool accepted = false;  // at the place where it was last
        POINT place = {0, 0};   // on the screen
    };

    const X11Connection& connection_;
    DisplaySink& sink_;
    Drag drag_;
};

}  // namespace tdkp
