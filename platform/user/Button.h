// The class "button": push buttons, check boxes that check themselves, and group boxes. A press with the mouse or
// Space sends WM_COMMAND with BN_CLICKED.
#pragma once

#include <windows.h>

namespace tdkp {

WNDCLASSA ButtonClass();

}  // namespace tdkp
