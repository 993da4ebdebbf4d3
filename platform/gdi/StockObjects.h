// Objects that the layer keeps for itself: never deleted, not counted, the same for all threads.
#pragma once

#include <wingdi.h>

#include <memory>

#include "platform/gdi/GdiObject.h"

namespace tdkp {

// The bitmap of a memory context into which none was selected: 1 by 1 pixels, never drawn on.
HBITMAP DefaultBitmap();

// A brush that DeleteObject leaves alone. Each call makes one: the caller keeps what it got.
HBRUSH MakeStockBrush(COLORREF color);

// The brush behind a handle; COLOR_ numbers plus 1 are taken as handles of the system's brushes. Null if there
// is none.
std::shared_ptr<Brush> FindBrush(HBRUSH handle);

}  // namespace tdkp
