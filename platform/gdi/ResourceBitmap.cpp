// Bitmaps out of resources: a header, its colours, its pixels, without the header that a file has.
#include <windows.h>

#include <cstddef>
#include <vector>

#include "platform/gdi/DibLayout.h"
#include "platform/gdi/PixelCodec.h"
#include "platform/gdi/RasterBlit.h"

namespace tdkp {
namespace {

struct PackedDib {
    std::vector<std::byte> bytes;  // a copy that is aligned
    DibLayout layout;
    size_t pixels = 0;  // where they start

    const BITMAPINFO& Info() const { return *reinterpret_cast<const BITMAPINFO*>(bytes.data()); }
};

// False if the bytes don't hold all that their header tells of.
bool ReadPackedDib(const void* data, size_t size, PackedDib* dib) {
    constexpr size_t kHeader = sizeof(BITMAPINFOHEADER);
    if (data == nullptr || size < kHeader) return false;
    const auto* start = static_cast<const std::byte*>(data);
    dib->bytes.assign(start, start + size);
    const BITMAPINFOHEADER& header = dib->Info().bmiHeader;
    // Resource compilers write the short header, and no masks behind it.
    if (header.biSize != kHeader || header.biCompression != BI_RGB || !ParseDib(dib->Info(), &dib->layout))
        return false;
    const size_t all = dib->layout.bits <= 8 ? size_t{1} << dib->layout.bits : 0;
    const size_t colors = header.biClrUsed == 0 ? all : header.biClrUsed;
    if (dib->layout.bits <= 8 && colors > all) return false;
    dib->pixels = kHeader + colors * sizeof(RGBQUAD);
    return dib->pixels <= size && dib->layout.imageSize <= size - dib->pixels;
}

HBITMAP MakeSection(int width, int height, uint8_t** bits, BITMAPINFO* info) {
    *info = {};
    info->bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info->bmiHeader.biWidth = width;
    info->bmiHeader.biHeight = height;
    info->bmiHeader.biPlanes = 1;
    info->bmiHeader.biBitCount = 24;
    void* memory = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, info, DIB_RGB_COLORS, &memory, nullptr, 0);
    *bits = static_cast<uint8_t*>(memory);
    return bitmap;
}

HBITMAP BitmapOf(PackedDib& dib) {
    BITMAPINFO info;
    uint8_t* bits = nullptr;
    DibLayout layout;
    const HBITMAP bitmap = MakeSection(dib.layout.width, dib.layout.height, &bits, &info);
    if (bitmap == nullptr || !ParseDib(info, &layout)) return bitmap;
    uint32_t palette[kPaletteEntries] = {};
    ReadDibColors(dib.Info(), dib.layout, palette);
    auto* pixels = reinterpret_cast<uint8_t*>(dib.bytes.data()) + dib.pixels;
    BlitJob job;
    job.to = DibRaster(layout, bits, layout.height, nullptr);
    job.from = DibRaster(dib.layout, pixels, dib.layout.height, dib.layout.bits <= 8 ? palette : nullptr);
    job.toRect = job.fromRect = {0, 0, layout.width, layout.height};
    RunBlit(job, &job.toRect, 1);
    return bitmap;
}

}  // namespace
}  // namespace tdkp

HBITMAP LoadBitmapA(HINSTANCE instance, LPCSTR name) {
    const HRSRC resource = FindResourceA(instance, name, RT_BITMAP);
    tdkp::PackedDib dib;
    const void* data = LockResource(LoadResource(instance, resource));
    return tdkp::ReadPackedDib(data, SizeofResource(instance, resource), &dib) ? tdkp::BitmapOf(dib) : nullptr;
}
