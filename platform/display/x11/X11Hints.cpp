#include "platform/display/x11/X11Hints.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "platform/display/x11/X11DropTarget.h"
#include "platform/display/x11/X11Reply.h"

namespace tdkp {
namespace {

// WM_NORMAL_HINTS and WM_HINTS (ICCCM 4.1.2.3 and 4.1.2.4).
struct SizeHints {
    uint32_t flags = 0;
    int32_t x = 0, y = 0, width = 0, height = 0;
    int32_t minWidth = 0, minHeight = 0, maxWidth = 0, maxHeight = 0;
    int32_t widthStep = 0, heightStep = 0;
    int32_t minAspect[2] = {}, maxAspect[2] = {};
    int32_t baseWidth = 0, baseHeight = 0;
    uint32_t gravity = 0;
};
static_assert(sizeof(SizeHints) == 18 * sizeof(uint32_t));

constexpr uint32_t kUserPosition = 1 << 0;
constexpr uint32_t kProgramSize = 1 << 3;
constexpr uint32_t kMinSize = 1 << 4;
constexpr uint32_t kMaxSize = 1 << 5;
constexpr uint32_t kGravity = 1 << 9;

struct InputHints {
    uint32_t flags = 0, input = 0, initialState = 0;
    uint32_t iconPixmap = 0, iconWindow = 0;
    int32_t iconX = 0, iconY = 0;
    uint32_t iconMask = 0, group = 0;
};
static_assert(sizeof(InputHints) == 9 * sizeof(uint32_t));

constexpr uint32_t kInputHint = 1 << 0;

// _MOTIF_WM_HINTS, which managers still take for this one thing.
struct MotifHints {
    uint32_t flags = 1 << 1;  // `decorations` counts
    uint32_t functions = 0, decorations = 0, inputMode = 0, status = 0;
};

constexpr uint8_t kBytes = 8;
constexpr uint8_t kWords = 32;
constexpr uint32_t kFromApplication = 1;

void SetText(const X11Connection& connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
             const std::string& text) {
    xcb_change_property(connection.Get(), XCB_PROP_MODE_REPLACE, window, property, type, kBytes,
                        static_cast<uint32_t>(text.size()), text.data());
}

void SetWords(const X11Connection& connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
              const void* words, uint32_t count) {
    xcb_change_property(connection.Get(), XCB_PROP_MODE_REPLACE, window, property, type, kWords, count, words);
}

bool IsPlainAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char each) { return static_cast<unsigned char>(each) < 0x80; });
}

void TellManager(const X11Connection& connection, xcb_window_t window, xcb_atom_t type,
                 const xcb_client_message_data_t& data) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = kWords;
    event.window = window;
    event.type = type;
    event.data = data;
    xcb_send_event(connection.Get(), 0, connection.Screen().root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
}

std::string HostName() {
    char name[256] = {};
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

bool HasProperty(const X11Connection& connection, xcb_window_t window, xcb_atom_t property) {
    const auto cookie = xcb_get_property(connection.Get(), 0, window, property, XCB_ATOM_ANY, 0, 0);
    const auto reply = X11Reply(xcb_get_property_reply(connection.Get(), cookie, nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

// The top-level window that holds `window`, or 0: what a manager looks after.
xcb_window_t ManagedWindowOf(const X11Connection& connection, xcb_window_t window) {
    const xcb_window_t root = connection.Screen().root;
    while (window != 0 && window != root) {
        const auto tree =
            X11Reply(xcb_query_tree_reply(connection.Get(), xcb_query_tree(connection.Get(), window), nullptr));
        if (!tree) return 0;
        if (tree->parent == root || HasProperty(connection, window, connection.Atoms().wmState)) return window;
        window = tree->parent;
    }
    return 0;
}

}  // namespace

void WriteX11Identity(const X11Connection& connection, xcb_window_t window, const DisplayWindowInfo& info) {
    const X11Atoms& atoms = connection.Atoms();
    // Instance and class, each with its terminating zero.
    const std::string zero(1, '\0');
    SetText(connection, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, info.className + zero + info.className + zero);
    WriteX11Title(connection, window, info.title);

    const xcb_atom_t protocols[] = {atoms.wmDeleteWindow, atoms.netWmPing};
    SetWords(connection, window, atoms.wmProtocols, XCB_ATOM_ATOM, protocols, 2);
    const uint32_t process = static_cast<uint32_t>(getpid());
    SetWords(connection, window, atoms.netWmPid, XCB_ATOM_CARDINAL, &process, 1);
    // The process number counts only together with the machine's name.
    SetText(connection, window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, HostName());

    InputHints input;
    input.flags = kInputHint;
    input.input = 1;
    SetWords(connection, window, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, &input, sizeof input / sizeof(uint32_t));

    const xcb_window_t owner = info.owner != 0 ? ManagedWindowOf(connection, info.owner) : 0;
    const xcb_atom_t ofManaged = owner != 0 ? atoms.netWmWindowTypeDialog : atoms.netWmWindowTypeNormal;
    const xcb_atom_t kind = info.menu ? atoms.netWmWindowTypePopupMenu : ofManaged;
    SetWords(connection, window, atoms.netWmWindowType, XCB_ATOM_ATOM, &kind, 1);
    if (owner != 0) SetWords(connection, window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, &owner, 1);
    if (!info.menu) SetWords(connection, window, atoms.xdndAware, XCB_ATOM_ATOM, &kX11DropVersion, 1);
    if (!info.framed) {
        const MotifHints noFrame;
        SetWords(connection, window, atoms.motifWmHints, atoms.motifWmHints, &noFrame,
                 sizeof noFrame / sizeof(uint32_t));
    }
}

void WriteX11Title(const X11Connection& connection, xcb_window_t window, const std::string& title) {
    const X11Atoms& atoms = connection.Atoms();
    SetText(connection, window, atoms.netWmName, atoms.utf8String, title);
    const xcb_atom_t plain = XCB_ATOM_STRING;
    SetText(connection, window, XCB_ATOM_WM_NAME, IsPlainAscii(title) ? plain : atoms.utf8String, title);
}

void WriteX11SizeHints(const X11Connection& connection, xcb_window_t window, const X11Window& state) {
    SizeHints hints;
    hints.flags = kProgramSize | kGravity;
    hints.gravity = XCB_GRAVITY_STATIC;
    // The corner of the screen is where a window lies that nobody gave a place.
    if (state.place.x != 0 || state.place.y != 0) hints.flags |= kUserPosition;
    hints.x = state.place.x;
    hints.y = state.place.y;
    hints.width = state.place.width;
    hints.height = state.place.height;
    if (!state.resizable && !state.fullScreen) {
        hints.flags |= kMinSize | kMaxSize;
        hints.minWidth = hints.maxWidth = state.place.width;
        hints.minHeight = hints.maxHeight = state.place.height;
    }
    SetWords(connection, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, &hints,
             sizeof hints / sizeof(uint32_t));
}

void WriteX11State(const X11Connection& connection, xcb_window_t window, const X11Window& state) {
    const X11Atoms& atoms = connection.Atoms();
    xcb_atom_t states[2] = {};
    uint32_t count = 0;
    if (state.fullScreen) states[count++] = atoms.netWmStateFullScreen;
    if (state.alwaysOnTop) states[count++] = atoms.netWmStateAbove;
    SetWords(connection, window, atoms.netWmState, XCB_ATOM_ATOM, states, count);
}

void AskX11State(const X11Connection& connection, xcb_window_t window, xcb_atom_t state, bool on) {
    xcb_client_message_data_t data = {};
    data.data32[0] = on ? 1 : 0;
    data.data32[1] = state;
    data.data32[3] = kFromApplication;
    TellManager(connection, window, connection.Atoms().netWmState, data);
}

void AskX11Activation(const X11Connection& connection, xcb_window_t window) {
    xcb_client_message_data_t data = {};
    data.data32[0] = kFromApplication;
    data.data32[1] = XCB_CURRENT_TIME;
    TellManager(connection, window, connection.Atoms().netActiveWindow, data);
}

void AskX11Withdrawal(const X11Connection& connection, xcb_window_t window) {
    xcb_unmap_notify_event_t event = {};
    event.response_type = XCB_UNMAP_NOTIFY;
    event.event = connection.Screen().root;
    event.window = window;
    xcb_send_event(connection.Get(), 0, connection.Screen().root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
}

}  // namespace tdkp
