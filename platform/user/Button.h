// The class "button": a push button. A press with the mouse or Space sends WM_COMMAND with BN_CLICKED.
#pragma once

#include <windows.h>

namespace tdkp {

WNDCLASSA ButtonClass();

}  // namespace tdkp
