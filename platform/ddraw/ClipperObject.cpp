#include "platform/ddraw/ClipperObject.h"

#include <winuser.h>

#include "platform/ddraw/CallSwitches.h"
#include "platform/user/WindowRaster.h"

namespace tdkp {

ClipperObject::~ClipperObject() {
    if (const HWND window = Window()) WindowContextReturned(window);
}

HRESULT ClipperObject::SetHWnd(DWORD flags, HWND window) {
    if (const HRESULT fault = CountCall()) return fault;
    if (flags != 0 || window == nullptr || !IsWindow(window)) return DDERR_INVALIDPARAMS;
    WindowContextTaken(window);
    if (const HWND former = window_.exchange(window)) WindowContextReturned(former);
    return DD_OK;
}

}  // namespace tdkp
