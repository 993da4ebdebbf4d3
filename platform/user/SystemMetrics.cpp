#include <windows.h>

#include <cstdlib>

#include "platform/user/WindowRaster.h"

namespace {

// For tests: says that the session is a remote one.
bool IsRemoteSession() {
    const char* value = std::getenv("TDKVIZ_REMOTE_SESSION");
    return value != nullptr && *value != '\0' && *value != '0';
}

}  // namespace

TDKP_API INT GetSystemMetrics(INT index) {
    constexpr INT kBorder = 1;
    constexpr INT kEdge = 2;
    constexpr INT kCaption = 19;
    constexpr INT kDoubleClick = 4;
    constexpr INT kMouseButtons = 3;
    switch (index) {
        case SM_CXSCREEN:
            return tdkp::DisplaySize().cx;
        case SM_CYSCREEN:
            return tdkp::DisplaySize().cy;
        case SM_CYCAPTION:
            return kCaption;
        case SM_CXBORDER:
        case SM_CYBORDER:
            return kBorder;
        case SM_CXEDGE:
        case SM_CYEDGE:
            return kEdge;
        case SM_MOUSEPRESENT:
            return 1;
        case SM_CMOUSEBUTTONS:
            return kMouseButtons;
        case SM_CXDOUBLECLK:
        case SM_CYDOUBLECLK:
            return kDoubleClick;
        case SM_REMOTESESSION:
            return IsRemoteSession();
        default:
            return 0;
    }
}
