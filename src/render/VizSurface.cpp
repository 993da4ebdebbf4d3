#include "src/render/VizSurface.h"

#include <new>

namespace tdkviz {

VizSurface* CreateVizSurface(const BitmapInfoRecord* info) {
    std::unique_ptr<VizSurface> surface(new (std::nothrow) VizSurface{});
    if (!info || !surface) return nullptr;
    surface->Mapping =
        CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, info->Header.biSizeImage, nullptr);
    if (!surface->Mapping) return nullptr;
    surface->Bitmap = CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(info), DIB_RGB_COLORS,
                                       &surface->Pixels, surface->Mapping, 0);
    if (surface->Bitmap && surface->Pixels) {
        GetObjectA(surface->Bitmap, sizeof(surface->Section), &surface->Section);
        return surface.release();
    }
    if (surface->Bitmap) DeleteObject(surface->Bitmap);
    CloseHandle(surface->Mapping);
    return nullptr;
}

void DestroyVizSurface(VizSurface* surface) {
    if (!surface) return;
    DeleteObject(surface->Bitmap);
    CloseHandle(surface->Mapping);
    delete surface;
}

BOOL BlitVizSurface(HDC destinationDC, HDC memoryDC, const VizSurface* surface, const RECT& source,
                    const RECT& destination) {
    if (!surface) return FALSE;
    const int sourceWidth = source.right - source.left, sourceHeight = source.bottom - source.top;
    const int width = destination.right - destination.left, height = destination.bottom - destination.top;
    const HGDIOBJ earlier = SelectObject(memoryDC, surface->Bitmap);
    const BOOL done = width == sourceWidth && height == sourceHeight
                          ? BitBlt(destinationDC, destination.left, destination.top, width, height, memoryDC,
                                   source.left, source.top, SRCCOPY)
                          : StretchBlt(destinationDC, destination.left, destination.top, width, height, memoryDC,
                                       source.left, source.top, sourceWidth, sourceHeight, SRCCOPY);
    SelectObject(memoryDC, earlier);
    return done;
}

}  // namespace tdkviz
