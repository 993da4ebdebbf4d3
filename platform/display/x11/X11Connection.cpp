#include "platform/display/x11/X11Connection.h"

#include <sys/socket.h>
#include <xcb/shm.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "platform/display/x11/X11Reply.h"

namespace tdkp {
namespace {

struct NamedAtom {
    const char* name;
    xcb_atom_t X11Atoms::*field;
};

constexpr NamedAtom kAtoms[] = {
    {"WM_PROTOCOLS", &X11Atoms::wmProtocols},
    {"WM_DELETE_WINDOW", &X11Atoms::wmDeleteWindow},
    {"WM_STATE", &X11Atoms::wmState},
    {"UTF8_STRING", &X11Atoms::utf8String},
    {"_NET_WM_NAME", &X11Atoms::netWmName},
    {"_NET_WM_PID", &X11Atoms::netWmPid},
    {"_NET_WM_PING", &X11Atoms::netWmPing},
    {"_NET_WM_STATE", &X11Atoms::netWmState},
    {"_NET_WM_STATE_FULLSCREEN", &X11Atoms::netWmStateFullScreen},
    {"_NET_WM_STATE_ABOVE", &X11Atoms::netWmStateAbove},
    {"_NET_WM_WINDOW_TYPE", &X11Atoms::netWmWindowType},
    {"_NET_WM_WINDOW_TYPE_NORMAL", &X11Atoms::netWmWindowTypeNormal},
    {"_NET_WM_WINDOW_TYPE_DIALOG", &X11Atoms::netWmWindowTypeDialog},
    {"_NET_WM_WINDOW_TYPE_POPUP_MENU", &X11Atoms::netWmWindowTypePopupMenu},
    {"_NET_SUPPORTING_WM_CHECK", &X11Atoms::netSupportingWmCheck},
    {"_NET_ACTIVE_WINDOW", &X11Atoms::netActiveWindow},
    {"_MOTIF_WM_HINTS", &X11Atoms::motifWmHints},
    {"XdndAware", &X11Atoms::xdndAware},
    {"XdndEnter", &X11Atoms::xdndEnter},
    {"XdndPosition", &X11Atoms::xdndPosition},
    {"XdndStatus", &X11Atoms::xdndStatus},
    {"XdndLeave", &X11Atoms::xdndLeave},
    {"XdndDrop", &X11Atoms::xdndDrop},
    {"XdndFinished", &X11Atoms::xdndFinished},
    {"XdndSelection", &X11Atoms::xdndSelection},
    {"XdndTypeList", &X11Atoms::xdndTypeList},
    {"XdndActionCopy", &X11Atoms::xdndActionCopy},
    {"text/uri-list", &X11Atoms::uriList},
};

// Room for the request around the pixels, and as much as one request should hold up the others.
constexpr uint32_t kRequestHeader = 64;
constexpr uint32_t kMaxSlice = 1024 * 1024;

// The last window's id, without the part that names its connection.
std::atomic<uint32_t> lastWindowNumber{0};

xcb_screen_t* ScreenOf(const xcb_setup_t* setup, int number) {
    auto screen = xcb_setup_roots_iterator(setup);
    for (; screen.rem > 1 && number > 0; --number) xcb_screen_next(&screen);
    return screen.data;
}

// Pictures go to the server as they lie in memory.
bool HasMachineByteOrder(const xcb_setup_t* setup) {
    const bool little = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    return little == (std::endian::native == std::endian::little);
}

}  // namespace

std::shared_ptr<X11Connection> X11Connection::Open() {
    const char* const named = std::getenv("DISPLAY");
    const std::string display = named != nullptr ? named : "";
    int number = 0;
    xcb_connection_t* connection = xcb_connect(display.empty() ? nullptr : display.c_str(), &number);
    if (xcb_connection_has_error(connection) == 0) {
        const xcb_setup_t* setup = xcb_get_setup(connection);
        xcb_screen_t* screen = ScreenOf(setup, number);
        const std::optional<X11Visual> visual = ChooseX11Visual(*setup, *screen);
        if (visual && HasMachineByteOrder(setup))
            return std::shared_ptr<X11Connection>(new X11Connection(connection, display, screen, *visual));
    }
    xcb_disconnect(connection);
    return nullptr;
}

X11Connection::X11Connection(xcb_connection_t* connection, const std::string& display, xcb_screen_t* screen,
                             const X11Visual& visual)
    : connection_(connection), puts_(display), screen_(screen), visual_(visual), colormap_(screen->default_colormap) {
    SkipUsedIds();
    if (visual_.type.visual_id != screen_->root_visual) {
        colormap_ = xcb_generate_id(connection_);
        xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colormap_, screen_->root, visual_.type.visual_id);
    }
    if (visual_.format == PixelFormat::kIndexed8)
        palette_ = MakeX11Palette(connection_, screen_->root, visual_.type, &colormap_);
    InternAtoms();
    MakeGc();
    AskForSharedMemory();
    const uint64_t requestBytes = uint64_t{xcb_get_maximum_request_length(connection_)} * 4;
    maxPixelBytes_ = static_cast<uint32_t>(std::min<uint64_t>(requestBytes - kRequestHeader, kMaxSlice));
}

X11Connection::~X11Connection() {
    xcb_disconnect(connection_);
}

xcb_window_t X11Connection::MakeWindowId() const {
    const xcb_window_t id = xcb_generate_id(connection_);
    lastWindowNumber.store(id & xcb_get_setup(connection_)->resource_id_mask, std::memory_order_relaxed);
    return id;
}

void X11Connection::SkipUsedIds() const {
    constexpr uint32_t kMaxSkipped = 1 << 17;  // then from the start again
    const uint32_t skipped = lastWindowNumber.load(std::memory_order_relaxed) % kMaxSkipped;
    for (uint32_t count = 0; count < skipped; ++count) xcb_generate_id(connection_);
}

void X11Connection::InternAtoms() {
    xcb_intern_atom_cookie_t cookies[std::size(kAtoms)];
    for (size_t index = 0; index < std::size(kAtoms); ++index) {
        const char* name = kAtoms[index].name;
        cookies[index] = xcb_intern_atom(connection_, 0, static_cast<uint16_t>(std::strlen(name)), name);
    }
    for (size_t index = 0; index < std::size(kAtoms); ++index) {
        if (const auto reply = X11Reply(xcb_intern_atom_reply(connection_, cookies[index], nullptr)))
            atoms_.*kAtoms[index].field = reply->atom;
    }
}

void X11Connection::MakeGc() {
    // A context belongs to a depth; where the root has another one, a pixmap stands in for a window.
    xcb_drawable_t drawable = screen_->root;
    if (visual_.depth != screen_->root_depth) {
        drawable = xcb_generate_id(connection_);
        xcb_create_pixmap(connection_, visual_.depth, drawable, screen_->root, 1, 1);
    }
    gc_ = xcb_generate_id(connection_);
    const uint32_t noExposures = 0;
    xcb_create_gc(connection_, gc_, drawable, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    if (drawable != screen_->root) xcb_free_pixmap(connection_, drawable);
}

void X11Connection::AskForSharedMemory() {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection_, &xcb_shm_id);
    if (extension == nullptr || extension->present == 0) return;
    const auto version =
        X11Reply(xcb_shm_query_version_reply(connection_, xcb_shm_query_version(connection_), nullptr));
    sharesMemory.store(version != nullptr, std::memory_order_relaxed);
}

void X11Connection::WaitForServer() const {
    X11Reply(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void X11Connection::Break() const {
    WaitForServer();
    shutdown(xcb_get_file_descriptor(connection_), SHUT_RDWR);
}

xcb_window_t X11Connection::WindowProperty(xcb_window_t window, xcb_atom_t property) const {
    const auto cookie = xcb_get_property(connection_, 0, window, property, XCB_ATOM_WINDOW, 0, 1);
    const auto reply = X11Reply(xcb_get_property_reply(connection_, cookie, nullptr));
    xcb_window_t value = 0;
    if (reply && xcb_get_property_value_length(reply.get()) == static_cast<int>(sizeof value))
        std::memcpy(&value, xcb_get_property_value(reply.get()), sizeof value);
    return value;
}

bool X11Connection::HasWindowManager() const {
    // A manager that has gone may leave the root's property behind, but not the window that it names.
    const xcb_window_t check = WindowProperty(screen_->root, atoms_.netSupportingWmCheck);
    return check != 0 && WindowProperty(check, atoms_.netSupportingWmCheck) == check;
}

}  // namespace tdkp
