// The class "msctls_trackbar32": a horizontal slider. Arrows, Page, Home and End move it, a press beside the thumb
// goes on by pages until the thumb is there, and the thumb can be dragged. Tick marks stand where its middle goes.
#pragma once

#include <windows.h>

namespace tdkp {

WNDCLASSA TrackbarClass();

}  // namespace tdkp
