// VizSurface: pixels that the program writes and GDI blits, with no copy between.
#pragma once

#include <memory>

#include <windows.h>

#include "src/render/Formats.h"

namespace tdkviz {

// A DIB section in a file mapping of its own. Made and freed only by the two functions below.
struct VizSurface {
    DIBSECTION Section;  // as GDI reports it
    HBITMAP Bitmap;      // owned
    HANDLE Mapping;      // owned; backs the pixels
    void* Pixels;        // lowest address, Section.dsBmih.biSizeImage bytes
};

// A new surface of biSizeImage bytes, its pixels 0, or null; nothing is left behind then.
VizSurface* CreateVizSurface(const BitmapInfoRecord* info);
// Null is ignored.
void DestroyVizSurface(VizSurface* surface);
// Copies `source` of the surface into `destination` of `destinationDC`; stretches if their sizes differ,
// in the mode that the contexts' owner set. `memoryDC` is compatible with `destinationDC` and has its
// own bitmap back afterwards. Gives what the GDI call gave.
BOOL BlitVizSurface(HDC destinationDC, HDC memoryDC, const VizSurface* surface, const RECT& source,
                    const RECT& destination);

struct VizSurfaceDeleter {
    void operator()(VizSurface* surface) const { DestroyVizSurface(surface); }
};
using VizSurfacePtr = std::unique_ptr<VizSurface, VizSurfaceDeleter>;

}  // namespace tdkviz
