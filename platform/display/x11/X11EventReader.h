// The display's thread: reads what the server tells and hands it to the sink.
#pragma once

#include <xcb/xcb.h>

#include <atomic>
#include <memory>
#include <thread>

#include "platform/display/Display.h"
#include "platform/display/x11/X11Connection.h"
#include "platform/display/x11/X11DropTarget.h"
#include "platform/display/x11/X11Keyboard.h"
#include "platform/display/x11/X11Windows.h"

namespace tdkp {

class X11EventReader {
public:
    // Starts the thread.
    X11EventReader(std::shared_ptr<X11Connection> connection, X11Windows& windows, DisplaySink& sink);
    // Breaks the connection and waits for the thread: not to be called on it, nor with a lock that the sink wants.
    ~X11EventReader();

    SIZE ScreenSize() const;

    // Of the calling thread, null if that isn't a display's thread.
    static X11EventReader* OfThisThread();
    // On the thread itself: it ends when the sink returns.
    void AskToEnd() { ending_.store(true, std::memory_order_relaxed); }

private:
    void Run();
    void Handle(const xcb_generic_event_t& event);
    void OnButton(const xcb_button_press_event_t& event, bool down);
    void OnMotion(const xcb_motion_notify_event_t& event);
    void OnKey(const xcb_key_press_event_t& event, bool down);
    void OnLeave(const xcb_leave_notify_event_t& event);
    void OnFocus(const xcb_focus_in_event_t& event, bool gained);
    void OnExpose(const xcb_expose_event_t& event);
    void OnConfigure(const xcb_configure_notify_event_t& event, bool byManager, uint32_t sequence);
    void OnReparent(const xcb_reparent_notify_event_t& event);
    void OnMap(xcb_window_t window, bool mapped);
    void OnDestroy(xcb_window_t window);
    void OnClientMessage(const xcb_client_message_event_t& event);
    void OnServerGone();

    const std::shared_ptr<X11Connection> connection_;
    X11Windows& windows_;
    DisplaySink& sink_;
    std::atomic<bool> ending_{false};
    std::atomic<uint32_t> screenSize_;  // width in the low half, height in the high

    // The thread's own.
    std::unique_ptr<X11Keyboard> keyboard_;
    X11DropTarget drops_;

    std::thread thread_;
};

}  // namespace tdkp
