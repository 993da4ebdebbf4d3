#include "platform/display/x11/X11EventReader.h"

#include <windows.h>

#include <utility>

#include "platform/display/x11/X11Focus.h"
#include "platform/display/x11/X11Reply.h"
#include "platform/kernel/SignalsBlocked.h"

namespace tdkp {
namespace {

thread_local X11EventReader* readerOfThisThread = nullptr;

struct Button {
    xcb_button_t number;
    UINT down, up;
    WPARAM key;
};

constexpr Button kButtons[] = {
    {1, WM_LBUTTONDOWN, WM_LBUTTONUP, MK_LBUTTON},
    {2, WM_MBUTTONDOWN, WM_MBUTTONUP, MK_MBUTTON},
    {3, WM_RBUTTONDOWN, WM_RBUTTONUP, MK_RBUTTON},
};

constexpr xcb_button_t kWheelUp = 4;
constexpr xcb_button_t kWheelDown = 5;

constexpr uint8_t kEventMask = 0x7F;
constexpr uint8_t kSentByClient = 0x80;

WPARAM KeysOf(uint16_t state) {
    WPARAM keys = 0;
    keys |= (state & XCB_BUTTON_MASK_1) != 0 ? MK_LBUTTON : 0;
    keys |= (state & XCB_BUTTON_MASK_2) != 0 ? MK_MBUTTON : 0;
    keys |= (state & XCB_BUTTON_MASK_3) != 0 ? MK_RBUTTON : 0;
    keys |= (state & XCB_MOD_MASK_SHIFT) != 0 ? MK_SHIFT : 0;
    keys |= (state & XCB_MOD_MASK_CONTROL) != 0 ? MK_CONTROL : 0;
    return keys;
}

template <typename T>
const T& As(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event);
}

uint32_t PackSize(uint16_t width, uint16_t height) {
    return static_cast<uint32_t>(height) << 16 | width;
}

}  // namespace

X11EventReader::X11EventReader(std::shared_ptr<X11Connection> connection, X11Windows& windows, DisplaySink& sink)
    : connection_(std::move(connection)),
      windows_(windows),
      sink_(sink),
      screenSize_(PackSize(connection_->Screen().width_in_pixels, connection_->Screen().height_in_pixels)),
      drops_(*connection_, sink) {
    const uint32_t rootEvents = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_->Get(), connection_->Screen().root, XCB_CW_EVENT_MASK, &rootEvents);
    connection_->Flush();
    const SignalsBlocked blocked;
    thread_ = std::thread([this] { Run(); });
}

X11EventReader::~X11EventReader() {
    ending_.store(true, std::memory_order_relaxed);
    connection_->Break();
    thread_.join();
}

SIZE X11EventReader::ScreenSize() const {
    const uint32_t size = screenSize_.load(std::memory_order_relaxed);
    return {LOWORD(size), HIWORD(size)};
}

X11EventReader* X11EventReader::OfThisThread() {
    return readerOfThisThread;
}

void X11EventReader::Run() {
    MarkServiceThread();
    readerOfThisThread = this;
    keyboard_ = std::make_unique<X11Keyboard>(connection_->Get());
    while (!ending_.load(std::memory_order_relaxed)) {
        const auto event = X11Reply(xcb_wait_for_event(connection_->Get()));
        if (!event) {
            OnServerGone();
            break;
        }
        Handle(*event);
    }
}

void X11EventReader::Handle(const xcb_generic_event_t& event) {
    switch (event.response_type & kEventMask) {
        case XCB_BUTTON_PRESS:
            return OnButton(As<xcb_button_press_event_t>(event), true);
        case XCB_BUTTON_RELEASE:
            return OnButton(As<xcb_button_release_event_t>(event), false);
        case XCB_MOTION_NOTIFY:
            return OnMotion(As<xcb_motion_notify_event_t>(event));
        case XCB_KEY_PRESS:
            return OnKey(As<xcb_key_press_event_t>(event), true);
        case XCB_KEY_RELEASE:
            return OnKey(As<xcb_key_release_event_t>(event), false);
        case XCB_LEAVE_NOTIFY:
            return OnLeave(As<xcb_leave_notify_event_t>(event));
        case XCB_FOCUS_IN:
            return OnFocus(As<xcb_focus_in_event_t>(event), true);
        case XCB_FOCUS_OUT:
            return OnFocus(As<xcb_focus_out_event_t>(event), false);
        case XCB_EXPOSE:
            return OnExpose(As<xcb_expose_event_t>(event));
        case XCB_CONFIGURE_NOTIFY:
            return OnConfigure(As<xcb_configure_notify_event_t>(event), (event.response_type & kSentByClient) != 0,
                               event.full_sequence);
        case XCB_REPARENT_NOTIFY:
            return OnReparent(As<xcb_reparent_notify_event_t>(event));
        case XCB_MAP_NOTIFY:
            return OnMap(As<xcb_map_notify_event_t>(event).window, true);
        case XCB_UNMAP_NOTIFY:
            return OnMap(As<xcb_unmap_notify_event_t>(event).window, false);
        case XCB_DESTROY_NOTIFY:
            return OnDestroy(As<xcb_destroy_notify_event_t>(event).window);
        case XCB_CLIENT_MESSAGE:
            return OnClientMessage(As<xcb_client_message_event_t>(event));
        case XCB_SELECTION_NOTIFY:
            return drops_.OnSelection(As<xcb_selection_notify_event_t>(event));
        case 0:
            return;  // the error of a request that came too late
        default:
            return keyboard_->OnEvent(event);
    }
}

void X11EventReader::OnButton(const xcb_button_press_event_t& event, bool down) {
    const WPARAM keys = KeysOf(event.state);
    for (const Button& button : kButtons) {
        // The server tells the state before the event.
        if (button.number == event.detail)
            sink_.OnMouse(event.event, down ? button.down : button.up, down ? keys | button.key : keys & ~button.key,
                          {event.event_x, event.event_y}, {event.root_x, event.root_y}, event.time);
    }
    if (down && (event.detail == kWheelUp || event.detail == kWheelDown))
        sink_.OnWheel(event.event, event.detail == kWheelUp ? WHEEL_DELTA : -WHEEL_DELTA, keys,
                      {event.event_x, event.event_y}, {event.root_x, event.root_y}, event.time);
}

void X11EventReader::OnMotion(const xcb_motion_notify_event_t& event) {
    sink_.OnMouse(event.event, WM_MOUSEMOVE, KeysOf(event.state), {event.event_x, event.event_y},
                  {event.root_x, event.root_y}, event.time);
}

void X11EventReader::OnKey(const xcb_key_press_event_t& event, bool down) {
    const X11Key key = keyboard_->Translate(event.detail, event.state);
    if (key.virtualKey != 0 || key.text != 0)
        sink_.OnKey(event.event, down, key.virtualKey, key.text, key.altDown, event.time);
}

void X11EventReader::OnLeave(const xcb_leave_notify_event_t& event) {
    constexpr uint16_t kButtonsDown = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    // A window keeps the mouse as long as a button is held down; that it has left is told again then.
    if (event.mode == XCB_NOTIFY_MODE_NORMAL && (event.state & kButtonsDown) != 0) return;
    sink_.OnPointerLeft(event.event, event.time);
}

void X11EventReader::OnFocus(const xcb_focus_in_event_t& event, bool gained) {
    // A grab takes the keyboard for a moment; the other details are about who lies under the pointer, or
    // about windows inside this one.
    if (event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB) return;
    if (event.detail == XCB_NOTIFY_DETAIL_INFERIOR || event.detail >= XCB_NOTIFY_DETAIL_POINTER) return;
    bool isEmbedded = false;
    windows_.With(event.event, [&](const X11Window& window) { isEmbedded = !window.topLevel; });
    if (isEmbedded) {
        AskForX11Keys(connection_->Get(), event.event, gained);
        connection_->Flush();
    }
    sink_.OnFocus(event.event, gained);
}

void X11EventReader::OnExpose(const xcb_expose_event_t& event) {
    const RECT rect = {event.x, event.y, event.x + event.width, event.y + event.height};
    sink_.OnExposed(event.window, rect);
}

void X11EventReader::OnConfigure(const xcb_configure_notify_event_t& event, bool byManager, uint32_t sequence) {
    if (event.window == connection_->Screen().root) {
        screenSize_.store(PackSize(event.width, event.height), std::memory_order_relaxed);
        return;
    }
    bool framed = false;
    windows_.With(event.window, [&](const X11Window& window) { framed = window.reparented; });
    X11Place place = {event.x, event.y, event.width, event.height};
    if (framed && !byManager) {
        // The position is the one in the frame.
        xcb_connection_t* const connection = connection_->Get();
        const auto cookie = xcb_translate_coordinates(connection, event.window, connection_->Screen().root, 0, 0);
        const auto reply = X11Reply(xcb_translate_coordinates_reply(connection, cookie, nullptr));
        if (!reply) return;
        place.x = reply->dst_x;
        place.y = reply->dst_y;
    }
    bool isNews = false;
    windows_.With(event.window, [&](X11Window& window) {
        // A request that asks for the place that an earlier one has brought about has no event of its own.
        const bool stale = static_cast<int32_t>(sequence - window.placedAt) < 0 && place != window.place;
        if (!window.topLevel || stale) return;
        isNews = place != window.told;
        window.place = window.told = place;
    });
    if (isNews) sink_.OnMovedOrSized(event.window, place.x, place.y, place.width, place.height);
}

void X11EventReader::OnReparent(const xcb_reparent_notify_event_t& event) {
    windows_.With(event.window,
                  [&](X11Window& window) { window.reparented = event.parent != connection_->Screen().root; });
}

void X11EventReader::OnMap(xcb_window_t id, bool mapped) {
    bool focus = false;
    bool iconified = false;
    bool isNews = false;
    windows_.With(id, [&](X11Window& window) {
        // A window that asks to be hidden goes by itself; one that doesn't was taken away.
        iconified = !mapped && window.topLevel && window.mapped && window.shown;
        isNews = std::exchange(window.iconified, iconified) != iconified;
        window.mapped = mapped;
        if (mapped) focus = std::exchange(window.focusWhenMapped, false);
    });
    if (isNews) sink_.OnIconified(id, iconified);
    if (focus) {
        TakeX11Keyboard(connection_->Get(), id);
        connection_->Flush();
    }
}

void X11EventReader::OnDestroy(xcb_window_t id) {
    bool isNews = false;
    const bool ours = windows_.With(id, [&](X11Window& window) { isNews = !std::exchange(window.gone, true); });
    if (isNews) sink_.OnDestroyed(id);
    if (ours) return;
    for (const WindowId owned : windows_.OwnedBy(id)) sink_.OnCloseRequest(owned);
}

void X11EventReader::OnClientMessage(const xcb_client_message_event_t& event) {
    const X11Atoms& atoms = connection_->Atoms();
    if (event.format != 32 || !windows_.Has(event.window) || drops_.OnMessage(event)) return;
    if (event.type != atoms.wmProtocols) return;
    if (event.data.data32[0] == atoms.wmDeleteWindow) {
        sink_.OnCloseRequest(event.window);
    } else if (event.data.data32[0] == atoms.netWmPing) {
        xcb_client_message_event_t answer = event;
        answer.response_type = XCB_CLIENT_MESSAGE;
        answer.window = connection_->Screen().root;
        xcb_send_event(connection_->Get(), 0, answer.window,
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&answer));
        connection_->Flush();
    }
}

void X11EventReader::OnServerGone() {
    if (ending_.load(std::memory_order_relaxed)) return;
    for (const WindowId id : windows_.All()) OnDestroy(id);
}

}  // namespace tdkp
