// The sunken frame around the client area of a child window with WS_EX_CLIENTEDGE. It is a part of the window's
// picture that nobody draws on.
#pragma once

#include "platform/gdi/Raster.h"

namespace tdkp {

constexpr int kClientEdge = 2;  // SM_CXEDGE and SM_CYEDGE

void DrawClientEdge(const Raster& picture);

}  // namespace tdkp
