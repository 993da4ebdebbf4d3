#include "platform/display/x11/X11DropTarget.h"

#include <algorithm>
#include <cstring>

#include "platform/display/x11/UriList.h"
#include "platform/display/x11/X11Reply.h"

namespace tdkp {
namespace {

// Places of the messages' numbers.
constexpr size_t kSource = 0, kEnterFlags = 1, kFirstType = 2, kPlace = 2, kDropTime = 2;
constexpr uint32_t kMoreThanThreeTypes = 1;
constexpr size_t kTypesInMessage = 3;
constexpr uint32_t kAccepted = 1;
constexpr uint32_t kTellEveryMove = 2;
constexpr uint32_t kMostWords = 1 << 20;  // of what is dropped

X11Owned<xcb_get_property_reply_t> ReadProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                                                bool remove) {
    const auto cookie = xcb_get_property(connection, remove ? 1 : 0, window, property, XCB_ATOM_ANY, 0, kMostWords);
    return X11Reply(xcb_get_property_reply(connection, cookie, nullptr));
}

}  // namespace

bool X11DropTarget::OnMessage(const xcb_client_message_event_t& event) {
    const X11Atoms& atoms = connection_.Atoms();
    const xcb_window_t source = event.data.data32[kSource];
    if (event.type == atoms.xdndEnter) return OnEnter(event), true;
    const bool known = source == drag_.source && event.window == drag_.target;
    if (event.type == atoms.xdndPosition) {
        if (known) OnPosition(event);
    } else if (event.type == atoms.xdndLeave) {
        if (known) drag_ = Drag();
    } else if (event.type == atoms.xdndDrop) {
        if (known) OnDrop(event);
    } else {
        return false;
    }
    return true;
}

void X11DropTarget::OnEnter(const xcb_client_message_event_t& event) {
    drag_ = Drag();
    drag_.source = event.data.data32[kSource];
    drag_.target = event.window;
    drag_.offersFiles = IsOffered(drag_.source, event);
}

bool X11DropTarget::IsOffered(xcb_window_t source, const xcb_client_message_event_t& event) const {
    const X11Atoms& atoms = connection_.Atoms();
    const uint32_t* const types = &event.data.data32[kFirstType];
    if (std::find(types, types + kTypesInMessage, atoms.uriList) != types + kTypesInMessage) return true;
    if ((event.data.data32[kEnterFlags] & kMoreThanThreeTypes) == 0) return false;
    const auto list = ReadProperty(connection_.Get(), source, atoms.xdndTypeList, false);
    if (!list) return false;
    const auto* first = static_cast<const xcb_atom_t*>(xcb_get_property_value(list.get()));
    const auto* end = first + static_cast<size_t>(xcb_get_property_value_length(list.get())) / sizeof(xcb_atom_t);
    return std::find(first, end, atoms.uriList) != end;
}

void X11DropTarget::OnPosition(const xcb_client_message_event_t& event) {
    const uint32_t place = event.data.data32[kPlace];
    drag_.place = {static_cast<int16_t>(place >> 16), static_cast<int16_t>(place & 0xFFFF)};
    drag_.accepted = drag_.offersFiles && sink_.AcceptsFiles(drag_.target, drag_.place);
    Answer(connection_.Atoms().xdndStatus, drag_.accepted, kTellEveryMove);
}

void X11DropTarget::OnDrop(const xcb_client_message_event_t& event) {
    if (!drag_.accepted) return Finish(false);
    const X11Atoms& atoms = connection_.Atoms();
    xcb_convert_selection(connection_.Get(), drag_.target, atoms.xdndSelection, atoms.uriList, atoms.xdndSelection,
                          event.data.data32[kDropTime]);
    connection_.Flush();
}

void X11DropTarget::OnSelection(const xcb_selection_notify_event_t& event) {
    const bool expected = drag_.accepted && event.requestor == drag_.target;
    if (!expected || event.selection != connection_.Atoms().xdndSelection) return;
    std::vector<std::string> files = TakeFiles(event);
    const bool taken = !files.empty();
    if (taken) sink_.OnFilesDropped(drag_.target, drag_.place, std::move(files));
    Finish(taken);
}

std::vector<std::string> X11DropTarget::TakeFiles(const xcb_selection_notify_event_t& event) const {
    if (event.property == XCB_ATOM_NONE) return {};
    const auto data = ReadProperty(connection_.Get(), event.requestor, event.property, true);
    constexpr uint8_t kBytes = 8;
    if (!data || data->type != connection_.Atoms().uriList || data->format != kBytes || data->bytes_after != 0)
        return {};
    return LocalFilesOf({static_cast<const char*>(xcb_get_property_value(data.get())),
                         static_cast<size_t>(xcb_get_property_value_length(data.get()))});
}

void X11DropTarget::Finish(bool taken) {
    Answer(connection_.Atoms().xdndFinished, taken, 0);
    drag_ = Drag();
}

// Both answers begin with the target and its flags; the action stands where each has it.
void X11DropTarget::Answer(xcb_atom_t type, bool yes, uint32_t flags) const {
    constexpr size_t kStatusAction = 4, kFinishedAction = 2;
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = drag_.source;
    event.type = type;
    event.data.data32[0] = drag_.target;
    event.data.data32[1] = yes ? flags | kAccepted : flags;
    const size_t actionAt = type == connection_.Atoms().xdndStatus ? kStatusAction : kFinishedAction;
    if (yes) event.data.data32[actionAt] = connection_.Atoms().xdndActionCopy;
    xcb_send_event(connection_.Get(), 0, drag_.source, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
    connection_.Flush();
}

}  // namespace tdkp
