#include "tests/x11/ForeignClient.h"

#include <xcb/xcbext.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "tests/support/Wait.h"

namespace {

int FieldOf(uint32_t pixel, uint32_t mask) {
    const int shift = std::countr_zero(mask);
    return static_cast<int>(((pixel & mask) >> shift) * 255 / (mask >> shift));
}

// The XTEST extension's FakeInput, as its protocol lays it out.
struct FakeInputRequest {
    uint8_t major = 0, minor = 2;
    uint16_t length = 0;
    uint8_t type = 0, detail = 0;
    uint16_t unused = 0;
    uint32_t delay = 0;
    uint32_t root = 0;
    uint32_t unused2[2] = {};
    int16_t x = 0, y = 0;
    uint8_t unused3[7] = {};
    uint8_t device = 0;
};
static_assert(sizeof(FakeInputRequest) == 36);

}  // namespace

int ScreenColor::DistanceTo(const ScreenColor& other) const {
    return std::max({std::abs(red - other.red), std::abs(green - other.green), std::abs(blue - other.blue)});
}

ForeignClient::ForeignClient(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(connection_) == 0) screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
}

ForeignClient::~ForeignClient() {
    xcb_disconnect(connection_);
}

void ForeignClient::Wait() {
    Own(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

xcb_window_t ForeignClient::MakeWindow(int x, int y, int width, int height) {
    const xcb_window_t window = xcb_generate_id(connection_);
    const uint32_t values[] = {screen_->white_pixel, 1};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, Root(), static_cast<int16_t>(x),
                      static_cast<int16_t>(y), static_cast<uint16_t>(width), static_cast<uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                      values);
    xcb_map_window(connection_, window);
    Wait();
    return window;
}

void ForeignClient::Move(xcb_window_t window, int x, int y) {
    const uint32_t place[] = {static_cast<uint32_t>(x), static_cast<uint32_t>(y)};
    xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place);
    Wait();
}

void ForeignClient::Resize(xcb_window_t window, int width, int height) {
    const uint32_t size[] = {static_cast<uint32_t>(width), static_cast<uint32_t>(height)};
    xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    Wait();
}

void ForeignClient::Hide(xcb_window_t window) {
    xcb_unmap_window(connection_, window);
    Wait();
}

void ForeignClient::Unhide(xcb_window_t window) {
    xcb_map_window(connection_, window);
    Wait();
}

void ForeignClient::Destroy(xcb_window_t window) {
    xcb_destroy_window(connection_, window);
    Wait();
}

void ForeignClient::AskToClose(xcb_window_t window) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = Atom("WM_PROTOCOLS");
    event.data.data32[0] = Atom("WM_DELETE_WINDOW");
    xcb_send_event(connection_, 0, window, 0, reinterpret_cast<const char*>(&event));
    Wait();
}

void ForeignClient::PretendToManage() {
    const xcb_window_t check = xcb_generate_id(connection_);
    xcb_create_window(connection_, 0, check, Root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
    for (const xcb_window_t window : {Root(), check})
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, Atom("_NET_SUPPORTING_WM_CHECK"),
                            XCB_ATOM_WINDOW, 32, 1, &check);
    const uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, Root(), XCB_CW_EVENT_MASK, &events);
    Wait();
}

std::string ForeignClient::WaitForStateRequest() {
    std::string request;
    const auto look = [&] {
        while (const auto event = Own(xcb_poll_for_event(connection_))) {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
            if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE || message.type != Atom("_NET_WM_STATE")) continue;
            const auto cookie = xcb_get_atom_name(connection_, message.data.data32[1]);
            const auto name = Own(xcb_get_atom_name_reply(connection_, cookie, nullptr));
            request = (message.data.data32[0] == 1 ? "+" : "-") +
                      std::string(xcb_get_atom_name_name(name.get()),
                                  static_cast<size_t>(xcb_get_atom_name_name_length(name.get())));
            return true;
        }
        return false;
    };
    tdkviz::test::WaitUntil(look);
    return request;
}

void ForeignClient::ExhaustColors() {
    for (int count = 256; count > 0;) {
        const auto cookie =
            xcb_alloc_color_cells(connection_, 0, screen_->default_colormap, static_cast<uint16_t>(count), 0);
        xcb_generic_error_t* error = nullptr;
        const auto reply = Own(xcb_alloc_color_cells_reply(connection_, cookie, &error));
        const auto errorOwner = Own(error);
        if (!reply) --count;
    }
}

ScreenColor ForeignClient::ColorAt(int x, int y, xcb_colormap_t colormap) {
    const auto cookie = xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, Root(), static_cast<int16_t>(x),
                                      static_cast<int16_t>(y), 1, 1, ~0u);
    const auto image = Own(xcb_get_image_reply(connection_, cookie, nullptr));
    if (!image) return {};
    uint32_t pixel = 0;
    std::memcpy(&pixel, xcb_get_image_data(image.get()),
                std::min<size_t>(sizeof pixel, image->depth > 16  ? 4
                                               : image->depth > 8 ? 2
                                                                  : 1));
    const xcb_visualtype_t* visual = RootVisual();
    if (visual->_class == XCB_VISUAL_CLASS_TRUE_COLOR)
        return {FieldOf(pixel, visual->red_mask), FieldOf(pixel, visual->green_mask),
                FieldOf(pixel, visual->blue_mask)};
    if (colormap == 0) {
        const auto maps = Own(xcb_list_installed_colormaps_reply(
            connection_, xcb_list_installed_colormaps(connection_, Root()), nullptr));
        colormap = *xcb_list_installed_colormaps_cmaps(maps.get());
    }
    const auto colors =
        Own(xcb_query_colors_reply(connection_, xcb_query_colors(connection_, colormap, 1, &pixel), nullptr));
    const xcb_rgb_t& color = *xcb_query_colors_colors(colors.get());
    return {color.red >> 8, color.green >> 8, color.blue >> 8};
}

xcb_colormap_t ForeignClient::ColormapOf(xcb_window_t window) {
    const auto cookie = xcb_get_window_attributes(connection_, window);
    const auto reply = Own(xcb_get_window_attributes_reply(connection_, cookie, nullptr));
    return reply ? reply->colormap : 0;
}

ScreenColor ForeignClient::WaitForColor(int x, int y, const ScreenColor& color, int tolerance) {
    ScreenColor seen;
    tdkviz::test::WaitUntil([&] {
        seen = ColorAt(x, y);
        return seen.DistanceTo(color) <= tolerance;
    });
    return seen;
}

std::string ForeignClient::TextProperty(xcb_window_t window, const char* name) {
    constexpr uint32_t kWords = 256;
    const auto cookie = xcb_get_property(connection_, 0, window, Atom(name), XCB_ATOM_ANY, 0, kWords);
    const auto reply = Own(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply) return "";
    return std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                       static_cast<size_t>(xcb_get_property_value_length(reply.get())));
}

uint32_t ForeignClient::NumberProperty(xcb_window_t window, const char* name) {
    const std::string bytes = TextProperty(window, name);
    uint32_t number = 0;
    if (bytes.size() == sizeof(number)) std::memcpy(&number, bytes.data(), sizeof(number));
    return number;
}

std::vector<xcb_window_t> ForeignClient::ChildrenOf(xcb_window_t window) {
    const auto reply = Own(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
    if (!reply) return {};
    const xcb_window_t* children = xcb_query_tree_children(reply.get());
    return {children, children + xcb_query_tree_children_length(reply.get())};
}

std::pair<int, int> ForeignClient::CornerOf(xcb_window_t window) {
    const auto cookie = xcb_translate_coordinates(connection_, window, Root(), 0, 0);
    const auto reply = Own(xcb_translate_coordinates_reply(connection_, cookie, nullptr));
    return reply ? std::pair<int, int>(reply->dst_x, reply->dst_y) : std::pair(-1, -1);
}

std::pair<int, int> ForeignClient::SizeOf(xcb_window_t window) {
    const auto shown = xcb_get_window_attributes(connection_, window);
    const auto place = xcb_get_geometry(connection_, window);
    const auto attributes = Own(xcb_get_window_attributes_reply(connection_, shown, nullptr));
    const auto geometry = Own(xcb_get_geometry_reply(connection_, place, nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE) return {0, 0};
    return {geometry->width, geometry->height};
}

xcb_window_t ForeignClient::Focus() {
    const auto reply = Own(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    return reply ? reply->focus : 0;
}

void ForeignClient::MoveMouse(int x, int y) {
    FakeInput(XCB_MOTION_NOTIFY, 0, x, y);
}

void ForeignClient::Button(int number, bool down) {
    FakeInput(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, static_cast<uint8_t>(number), 0, 0);
}

void ForeignClient::Key(uint32_t keysym, bool down) {
    FakeInput(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, KeycodeOf(keysym), 0, 0);
}

void ForeignClient::UseScreenSaver(int seconds) {
    xcb_set_screen_saver(connection_, static_cast<int16_t>(seconds), 0, XCB_BLANKING_PREFERRED, XCB_EXPOSURES_ALLOWED);
    Wait();
}

bool ForeignClient::IsScreenSaverOn() {
    // QueryInfo of the extension MIT-SCREEN-SAVER.
    static xcb_extension_t extension = {"MIT-SCREEN-SAVER", 0};
    static const xcb_protocol_request_t protocol = {1, &extension, 1, 0};
    struct {
        uint32_t head = 0, drawable = 0;
    } request;
    request.drawable = Root();
    iovec parts[3] = {};
    parts[2] = {&request, sizeof request};
    const unsigned int number = xcb_send_request(connection_, XCB_REQUEST_CHECKED, &parts[2], &protocol);
    xcb_generic_error_t* error = nullptr;
    const auto reply = Own(static_cast<xcb_generic_event_t*>(xcb_wait_for_reply(connection_, number, &error)));
    const auto errorOwner = Own(error);
    return reply && reply->pad0 == 1;  // its state stands where events have their detail
}

xcb_atom_t ForeignClient::Atom(const char* name) {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<uint16_t>(std::strlen(name)), name);
    const auto reply = Own(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : 0;
}

void ForeignClient::FakeInput(uint8_t type, uint8_t detail, int x, int y) {
    static xcb_extension_t extension = {"XTEST", 0};
    static const xcb_protocol_request_t protocol = {1, &extension, 2, 1};
    FakeInputRequest request;
    request.type = type;
    request.detail = detail;
    request.root = type == XCB_MOTION_NOTIFY ? Root() : 0;
    request.x = static_cast<int16_t>(x);
    request.y = static_cast<int16_t>(y);
    // The library writes in front of what it is given.
    iovec parts[3] = {};
    parts[2] = {&request, sizeof request};
    xcb_send_request(connection_, 0, &parts[2], &protocol);
    Wait();
}

uint8_t ForeignClient::KeycodeOf(uint32_t keysym) {
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    const int count = setup->max_keycode - setup->min_keycode + 1;
    const auto cookie = xcb_get_keyboard_mapping(connection_, setup->min_keycode, static_cast<uint8_t>(count));
    const auto reply = Own(xcb_get_keyboard_mapping_reply(connection_, cookie, nullptr));
    const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(reply.get());
    for (int key = 0; key < count; ++key) {
        if (keysyms[key * reply->keysyms_per_keycode] == keysym) return static_cast<uint8_t>(setup->min_keycode + key);
    }
    return 0;
}

const xcb_visualtype_t* ForeignClient::RootVisual() const {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen_); depth.rem != 0; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem != 0; xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == screen_->root_visual) return visual.data;
        }
    }
    return nullptr;
}
