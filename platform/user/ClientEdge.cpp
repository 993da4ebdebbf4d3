#include "platform/user/ClientEdge.h"

#include <windows.h>

#include "platform/gdi/PixelCodec.h"

namespace tdkp {
namespace {

// One ring of the frame, `inset` pixels from the outside.
void DrawRing(const Raster& picture, int inset, INT topLeft, INT bottomRight) {
    const uint32_t dark = EncodeColor(picture, ColorFromRef(GetSysColor(topLeft)));
    const uint32_t light = EncodeColor(picture, ColorFromRef(GetSysColor(bottomRight)));
    const int right = picture.width - 1 - inset;
    const int bottom = picture.height - 1 - inset;
    for (int x = inset; x <= right; ++x) {
        WriteRaw(picture, x, inset, x < right ? dark : light);
        WriteRaw(picture, x, bottom, light);
    }
    for (int y = inset; y < bottom; ++y) {
        WriteRaw(picture, inset, y, dark);
        WriteRaw(picture, right, y, light);
    }
}

}  // namespace

void DrawClientEdge(const Raster& picture) {
    DrawRing(picture, 0, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT);
    DrawRing(picture, 1, COLOR_3DDKSHADOW, COLOR_3DLIGHT);
}

}  // namespace tdkp
