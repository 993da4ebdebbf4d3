#include "platform/display/x11/X11Focus.h"

namespace tdkp {

uint32_t X11EventsOf(bool outermost, bool hasKeys) {
    uint32_t events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS |
                      XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_LEAVE_WINDOW;
    // Which of its children keys are for is not the server's business.
    if (outermost) events |= XCB_EVENT_MASK_FOCUS_CHANGE;
    if (hasKeys) events |= XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
    return events;
}

void TakeX11Keyboard(xcb_connection_t* connection, xcb_window_t window) {
    AskForX11Keys(connection, window, true);  // before the first of them comes
    xcb_set_input_focus(connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
}

void AskForX11Keys(xcb_connection_t* connection, xcb_window_t window, bool hasKeyboard) {
    const uint32_t events = X11EventsOf(true, hasKeyboard);
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &events);
}

}  // namespace tdkp
