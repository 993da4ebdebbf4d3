#include "platform/display/x11/X11Display.h"

#include <windows.h>

#include <algorithm>
#include <limits>

#include "platform/display/x11/X11Focus.h"
#include "platform/display/x11/X11Hints.h"
#include "platform/display/x11/X11Reply.h"
#include "platform/display/x11/X11ScreenSaver.h"

namespace tdkp {
namespace {

constexpr uint16_t kCaptureEvents = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                    XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_LEAVE_WINDOW;

// The protocol's coordinates have 16 bits, and no window is without area.
int16_t Coordinate(int value) {
    using Limits = std::numeric_limits<int16_t>;
    return static_cast<int16_t>(std::clamp<int>(value, Limits::min(), Limits::max()));
}

uint16_t Extent(int value) {
    return static_cast<uint16_t>(std::clamp<int>(value, 1, std::numeric_limits<int16_t>::max()));
}

bool HasArea(const X11Place& place) {
    return place.width > 0 && place.height > 0;
}

}  // namespace

X11Display::X11Display(std::shared_ptr<X11Connection> connection, DisplaySink& sink)
    : connection_(std::move(connection)), cursors_(*connection_), reader_(connection_, windows_, sink) {}

WindowId X11Display::CreateWindow(const DisplayWindowInfo& info) {
    const TerminationDeferral deferral;
    X11Window window;
    window.parent = info.topLevel ? 0 : info.parent;
    window.owner = info.topLevel ? info.owner : 0;
    window.topLevel = info.topLevel;
    window.managed = info.topLevel && !info.menu;
    window.resizable = info.resizable;
    window.place = window.told = {info.x, info.y, info.width, info.height};

    const WindowId id = connection_->MakeWindowId();
    windows_.Add(id, window);
    if (!CreateOnServer(id, window)) {
        windows_.Remove(id);
        return 0;
    }
    if (window.owner != 0 && !windows_.Has(window.owner)) WatchForeign(window.owner);
    if (info.topLevel) {
        WriteX11Identity(*connection_, id, info);
        WriteX11SizeHints(*connection_, id, window);
    }
    connection_->Flush();
    return id;
}

bool X11Display::CreateOnServer(xcb_window_t id, const X11Window& window) {
    const bool outermost = window.topLevel || !windows_.Has(window.parent);
    const xcb_window_t parent = window.topLevel ? connection_->Screen().root : window.parent;
    const X11Visual& visual = connection_->Visual();
    xcb_create_window_value_list_t values = {};
    values.background_pixmap = XCB_BACK_PIXMAP_NONE;  // the server never paints what the owner will
    values.border_pixel = 0;                          // needed, with the colormap, where the parent's depth is another
    values.bit_gravity = XCB_GRAVITY_NORTH_WEST;
    values.override_redirect = window.topLevel && !window.managed ? 1 : 0;
    values.event_mask = X11EventsOf(outermost, window.topLevel);
    values.colormap = connection_->Colormap();
    constexpr uint32_t kValues = XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY |
                                 XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const auto cookie = xcb_create_window_aux_checked(
        connection_->Get(), visual.depth, id, parent, Coordinate(window.place.x), Coordinate(window.place.y),
        Extent(window.place.width), Extent(window.place.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        visual.type.visual_id, kValues, &values);
    const auto error = X11Reply(xcb_request_check(connection_->Get(), cookie));
    windows_.With(id, [&](X11Window& each) { each.placedAt = cookie.sequence; });
    return !error && xcb_connection_has_error(connection_->Get()) == 0;
}

// What a window of another client owns goes with it, and only the server tells.
void X11Display::WatchForeign(WindowId id) {
    const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_->Get(), id, XCB_CW_EVENT_MASK, &events);
}

void X11Display::DestroyWindow(WindowId id) {
    const TerminationDeferral deferral;
    const std::unique_ptr<X11Window> window = windows_.Remove(id);
    if (!window || window->gone) return;
    windows_.MarkInsideGone(id);
    xcb_destroy_window(connection_->Get(), id);
    connection_->Flush();
}

void X11Display::Move(WindowId id, int x, int y, int width, int height) {
    const TerminationDeferral deferral;
    const X11Place place = {x, y, width, height};
    X11Window before;
    if (!windows_.With(id, [&](X11Window& window) {
            before = window;
            window.place = place;
        }))
        return;
    if (before.topLevel && !before.resizable) {
        X11Window after = before;
        after.place = place;
        WriteX11SizeHints(*connection_, id, after);
    }
    Place(id, place);
    if (before.shown && HasArea(before.place) != HasArea(place)) ShowOrHide(id, false);
    connection_->Flush();
}

void X11Display::Place(WindowId id, const X11Place& place) {
    xcb_configure_window_value_list_t values = {};
    values.x = Coordinate(place.x);
    values.y = Coordinate(place.y);
    values.width = Extent(place.width);
    values.height = Extent(place.height);
    constexpr uint16_t kValues =
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
    windows_.With(id, [&](X11Window& window) {
        window.placedAt = xcb_configure_window_aux(connection_->Get(), id, kValues, &values).sequence;
    });
}

void X11Display::Show(WindowId id, bool visible, bool activate) {
    const TerminationDeferral deferral;
    if (windows_.With(id, [&](X11Window& window) { window.shown = visible; })) ShowOrHide(id, activate);
    connection_->Flush();
}

void X11Display::ShowOrHide(WindowId id, bool activate) {
    X11Window window;
    if (!windows_.With(id, [&](const X11Window& each) { window = each; })) return;
    if (!window.shown || !HasArea(window.place)) {
        xcb_unmap_window(connection_->Get(), id);
        if (window.topLevel) AskX11Withdrawal(*connection_, id);
        return;
    }
    const bool takesFocus = activate && window.topLevel;
    const bool managed = takesFocus && window.managed && connection_->HasWindowManager();
    if (window.topLevel && !window.mapped) WriteX11State(*connection_, id, window);
    xcb_map_window(connection_->Get(), id);
    if (!takesFocus) return;
    Raise(id);
    // A manager decides itself about a window that it sees for the first time.
    if (!managed)
        SetFocus(id);
    else if (window.mapped)
        AskX11Activation(*connection_, id);
}

void X11Display::Raise(WindowId id) {
    const TerminationDeferral deferral;
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_->Get(), id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    connection_->Flush();
}

void X11Display::SetTitle(WindowId id, const std::string& title) {
    const TerminationDeferral deferral;
    bool topLevel = false;
    windows_.With(id, [&](const X11Window& window) { topLevel = window.topLevel; });
    if (topLevel) WriteX11Title(*connection_, id, title);
    connection_->Flush();
}

void X11Display::SetFullScreen(WindowId id, bool on) {
    const TerminationDeferral deferral;
    const bool managed = connection_->HasWindowManager();
    const SIZE screen = ScreenSize();
    X11Window after;
    bool changed = false;
    windows_.With(id, [&](X11Window& window) {
        changed = window.topLevel && window.fullScreen != on;
        if (!changed) return;
        window.fullScreen = on;
        if (on) window.beforeFullScreen = window.place;
        if (!managed) window.place = on ? X11Place{0, 0, screen.cx, screen.cy} : window.beforeFullScreen;
        after = window;
    });
    if (!changed) return;
    // A manager doesn't stretch what says that its size is fixed.
    WriteX11SizeHints(*connection_, id, after);
    if (!managed) {
        Place(id, after.place);
        Raise(id);
    } else if (after.shown) {
        AskX11State(*connection_, id, connection_->Atoms().netWmStateFullScreen, on);
    }
    connection_->Flush();
}

void X11Display::SetAlwaysOnTop(WindowId id, bool on) {
    const TerminationDeferral deferral;
    X11Window after;
    bool changed = false;
    windows_.With(id, [&](X11Window& window) {
        changed = window.topLevel && window.alwaysOnTop != on;
        window.alwaysOnTop = on;
        after.shown = window.shown;
    });
    if (!changed || !after.shown) return;  // a window that isn't shown yet takes its states along
    AskX11State(*connection_, id, connection_->Atoms().netWmStateAbove, on);
    if (on) Raise(id);
    connection_->Flush();
}

void X11Display::SetFocus(WindowId id) {
    const TerminationDeferral deferral;
    const WindowId outermost = windows_.Outermost(id);
    // The server refuses the keyboard to a window that can't be seen, and a manager may take its time to show one.
    if (windows_.With(outermost, [](X11Window& window) { window.focusWhenMapped = !window.mapped; }))
        TakeX11Keyboard(connection_->Get(), outermost);
    connection_->Flush();
}

void X11Display::SetCapture(WindowId id, bool on) {
    const TerminationDeferral deferral;
    if (on) {
        constexpr uint8_t kAllEventsHere = 0;
        const auto cookie =
            xcb_grab_pointer(connection_->Get(), kAllEventsHere, id, kCaptureEvents, XCB_GRAB_MODE_ASYNC,
                             XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME);
        xcb_discard_reply(connection_->Get(), cookie.sequence);
    } else {
        xcb_ungrab_pointer(connection_->Get(), XCB_CURRENT_TIME);
    }
    connection_->Flush();
}

bool X11Display::GrabInput(WindowId id) {
    const TerminationDeferral deferral;
    constexpr uint8_t kAllEventsHere = 0;
    xcb_connection_t* const connection = connection_->Get();
    // The arrow, also where the window below hides the pointer.
    const xcb_cursor_t arrow = cursors_.Get(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(IDC_ARROW)));
    const auto pointerCookie = xcb_grab_pointer(connection, kAllEventsHere, id, kCaptureEvents, XCB_GRAB_MODE_ASYNC,
                                                XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, arrow, XCB_CURRENT_TIME);
    const auto keyboardCookie =
        xcb_grab_keyboard(connection, kAllEventsHere, id, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const auto pointer = X11Reply(xcb_grab_pointer_reply(connection, pointerCookie, nullptr));
    const auto keyboard = X11Reply(xcb_grab_keyboard_reply(connection, keyboardCookie, nullptr));
    return pointer && pointer->status == XCB_GRAB_STATUS_SUCCESS && keyboard &&
           keyboard->status == XCB_GRAB_STATUS_SUCCESS;
}

void X11Display::ReleaseInput() {
    const TerminationDeferral deferral;
    xcb_ungrab_pointer(connection_->Get(), XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(connection_->Get(), XCB_CURRENT_TIME);
    connection_->Flush();
}

void X11Display::SetCursorShape(WindowId id, uint32_t shape) {
    const TerminationDeferral deferral;
    const xcb_cursor_t cursor = cursors_.Get(shape);
    xcb_change_window_attributes(connection_->Get(), id, XCB_CW_CURSOR, &cursor);
    connection_->Flush();
}

bool X11Display::GetPointer(POINT* point) const {
    const TerminationDeferral deferral;
    xcb_connection_t* const connection = connection_->Get();
    const auto cookie = xcb_query_pointer(connection, connection_->Screen().root);
    const auto reply = X11Reply(xcb_query_pointer_reply(connection, cookie, nullptr));
    if (!reply) return false;
    *point = {reply->root_x, reply->root_y};
    return true;
}

void X11Display::KeepAwake(bool on) {
    const TerminationDeferral deferral;
    // The server counts each client's requests, and drops them with the connection.
    if (keepsAwake_.exchange(on) != on) SuspendX11ScreenSaver(connection_->Get(), on);
    connection_->Flush();
}

bool X11Display::IsForeign(WindowId id) const {
    RECT rect;
    return !windows_.Has(id) && GetScreenRect(id, &rect);
}

bool X11Display::GetScreenRect(WindowId id, RECT* rect) const {
    const TerminationDeferral deferral;
    xcb_connection_t* const connection = connection_->Get();
    const auto geometryCookie = xcb_get_geometry(connection, id);
    const auto originCookie = xcb_translate_coordinates(connection, id, connection_->Screen().root, 0, 0);
    const auto geometry = X11Reply(xcb_get_geometry_reply(connection, geometryCookie, nullptr));
    const auto origin = X11Reply(xcb_translate_coordinates_reply(connection, originCookie, nullptr));
    // A pixmap has a geometry too, but no place.
    if (!geometry || !origin) return false;
    *rect = {origin->dst_x, origin->dst_y, origin->dst_x + geometry->width, origin->dst_y + geometry->height};
    return true;
}

bool X11Display::MakePicture(WindowId id, int width, int height, Raster* raster) {
    const TerminationDeferral deferral;
    std::shared_ptr<X11Picture> before;
    if (!windows_.With(id, [&](const X11Window& window) { before = window.picture; })) return false;
    if (before && before->Pixels().width == width && before->Pixels().height == height) {
        *raster = before->Pixels();
        return true;
    }
    std::shared_ptr<X11Picture> made = X11Picture::Make(connection_, width, height);
    if (!made) return false;
    *raster = made->Pixels();
    return windows_.With(id, [&](X11Window& window) { window.picture = std::move(made); });
}

void X11Display::DropPicture(WindowId id) {
    const TerminationDeferral deferral;
    std::shared_ptr<X11Picture> dropped;  // outlives the lock
    windows_.With(id, [&](X11Window& window) { dropped = std::move(window.picture); });
}

void X11Display::PutPicture(WindowId id, const RECT& rect) {
    const TerminationDeferral deferral;
    std::shared_ptr<X11Picture> picture;
    windows_.With(id, [&](const X11Window& window) {
        if (!window.gone) picture = window.picture;
    });
    if (picture) picture->Put(id, rect);
}

}  // namespace tdkp
