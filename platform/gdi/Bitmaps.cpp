// Making bitmaps, and reading them as device-independent ones.
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "platform/display/memory/FixedPalette.h"
#include "platform/gdi/DibLayout.h"
#include "platform/gdi/DrawTarget.h"
#include "platform/gdi/ObjectTable.h"
#include "platform/gdi/RasterBlit.h"
#include "platform/gdi/Rects.h"
#include "platform/user/WindowRaster.h"

namespace tdkp {
namespace {

constexpr DWORD kOffsetUnit = sizeof(DWORD);  // of a bitmap's place in a file mapping

// Black and white, or the palette that the display has when it can choose.
void SetDefaultColors(Bitmap& bitmap) {
    if (bitmap.raster.format == PixelFormat::kMono)
        bitmap.colors[1] = kColorMask;
    else if (bitmap.raster.format == PixelFormat::kIndexed8)
        std::copy(FixedPalette().begin(), FixedPalette().end(), bitmap.colors);
    bitmap.raster.palette = BitsPerPixel(bitmap.raster.format) <= 8 ? bitmap.colors : nullptr;
}

std::shared_ptr<Bitmap> MakeBitmap(PixelFormat format, int width, int height) {
    if (format == PixelFormat::kNone || width <= 0 || height <= 0) return nullptr;
    const int64_t pitch = DibPitch(BitsPerPixel(format), width);
    if (pitch > std::numeric_limits<int32_t>::max() / height) return nullptr;
    auto bitmap = std::make_shared<Bitmap>();
    if (!bitmap->memory.Allocate(static_cast<size_t>(pitch) * static_cast<size_t>(height))) return nullptr;
    bitmap->raster = {bitmap->memory.Data(), static_cast<int32_t>(pitch), width, height, format, nullptr};
    SetDefaultColors(*bitmap);
    return bitmap;
}

HBITMAP AddBitmap(std::shared_ptr<Bitmap> bitmap) {
    return bitmap ? static_cast<HBITMAP>(ObjectTable::Instance().Add(std::move(bitmap))) : nullptr;
}

// An indexed window has the colours that its display could get.
void TakeWindowColors(HWND window, Bitmap& bitmap) {
    const WindowRasterLock lock(window);
    if (lock.raster.palette != nullptr)
        std::copy(lock.raster.palette, lock.raster.palette + kPaletteEntries, bitmap.colors);
}

void DescribeSection(const DibLayout& layout, const BITMAPINFO& info, HANDLE section, DWORD offset, Bitmap& bitmap) {
    DIBSECTION& description = bitmap.section;
    description.dsBm = {0,
                        layout.width,
                        layout.height,
                        static_cast<LONG>(layout.pitch),
                        1,
                        static_cast<WORD>(layout.bits),
                        bitmap.memory.Data()};
    description.dsBmih = info.bmiHeader;
    description.dsBmih.biSize = sizeof(BITMAPINFOHEADER);
    description.dsBmih.biHeight = layout.height;
    description.dsBmih.biPlanes = 1;
    description.dsBmih.biSizeImage = static_cast<DWORD>(layout.imageSize);
    if (layout.compression == BI_BITFIELDS || layout.format == PixelFormat::kRgb555)
        MasksOf(layout.format, description.dsBitfields);
    description.dshSection = section;
    description.dsOffset = offset;
}

// ---- GetDIBits ----

DWORD CompressionOf(const Bitmap& bitmap) {
    if (bitmap.isSection) return bitmap.section.dsBmih.biCompression;
    const int bits = BitsPerPixel(bitmap.raster.format);
    return bits == 16 || bits == 32 ? BI_BITFIELDS : BI_RGB;
}

void FillHeader(const Bitmap& bitmap, BITMAPINFOHEADER& header) {
    const int bits = BitsPerPixel(bitmap.raster.format);
    header.biWidth = bitmap.raster.width;
    header.biHeight = bitmap.raster.height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(bits);
    header.biCompression = CompressionOf(bitmap);
    header.biSizeImage = static_cast<DWORD>(DibPitch(bits, bitmap.raster.width) * bitmap.raster.height);
    header.biXPelsPerMeter = 0;
    header.biYPelsPerMeter = 0;
    header.biClrUsed = 0;
    header.biClrImportant = 0;
}

// The masks of the bitmap itself if it has the bits asked for, else the usual ones.
void FillMasks(const Bitmap& bitmap, BITMAPINFO& info) {
    const int bits = info.bmiHeader.biBitCount;
    DWORD* masks = DibMasks(info);
    if (bits == BitsPerPixel(bitmap.raster.format))
        MasksOf(bitmap.raster.format, masks);
    else if (bits == 16 || bits == 32)
        MasksOf(bits == 16 ? PixelFormat::kRgb565 : PixelFormat::kRgb32, masks);
}

// The palette that the answer's pixels refer to: the bitmap's own if it has one of this size.
void FillColors(const Bitmap& bitmap, const DibLayout& layout, BITMAPINFO& info, uint32_t* palette) {
    Bitmap fallback;
    fallback.raster.format = layout.format;
    SetDefaultColors(fallback);
    const uint32_t* colors = bitmap.raster.format == layout.format ? bitmap.raster.palette : fallback.colors;
    const DWORD all = 1u << layout.bits;
    const DWORD room = info.bmiHeader.biClrUsed == 0 ? all : std::min(info.bmiHeader.biClrUsed, all);
    for (DWORD i = 0; i < all; ++i) {
        palette[i] = colors[i];
        if (i < room) DibColors(info)[i] = QuadFromColor(colors[i]);
    }
}

INT CopyLines(const Bitmap& bitmap, const DibLayout& layout, const uint32_t* palette, UINT first, UINT lines,
              LPVOID bits) {
    const Raster& from = bitmap.raster;
    if (first >= static_cast<UINT>(from.height)) return 0;
    const int count =
        static_cast<int>(std::min({lines, static_cast<UINT>(from.height) - first, static_cast<UINT>(layout.height)}));
    if (count <= 0) return 0;
    const int start = static_cast<int>(first);
    const int top = layout.topDown ? start : from.height - start - count;
    BlitJob job;
    job.to = DibRaster(layout, static_cast<uint8_t*>(bits), count, palette);
    job.from = from;
    const int width = std::min(layout.width, from.width);
    job.toRect = {0, 0, width, count};
    job.fromRect = {0, top, width, top + count};
    RunBlit(job, &job.toRect, 1);
    return count;
}

}  // namespace
}  // namespace tdkp

using namespace tdkp;

TDKP_API HBITMAP CreateBitmap(INT width, INT height, UINT planes, UINT bitsPerPixel, LPCVOID bits) {
    const TerminationDeferral deferral;
    if (planes != 1) return nullptr;
    std::shared_ptr<Bitmap> bitmap = MakeBitmap(FormatOfBits(static_cast<int>(bitsPerPixel)), width, height);
    if (bitmap && bits != nullptr) {
        const Raster& raster = bitmap->raster;
        const size_t rowBytes = static_cast<size_t>(RowBytes(raster.format, width));
        const size_t paddedBytes = (rowBytes + sizeof(WORD) - 1) / sizeof(WORD) * sizeof(WORD);
        for (int y = 0; y < height; ++y)
            std::memcpy(RowOf(raster, y), static_cast<const uint8_t*>(bits) + paddedBytes * static_cast<size_t>(y),
                        rowBytes);
    }
    return AddBitmap(std::move(bitmap));
}

TDKP_API HBITMAP CreateCompatibleBitmap(HDC dc, INT width, INT height) {
    const auto context = FindContext(dc);
    if (!context) return nullptr;
    if (width == 0 || height == 0) return CreateBitmap(1, 1, 1, 1, nullptr);
    const bool memory = context->ground == DeviceContext::Ground::kMemory;
    std::shared_ptr<Bitmap> bitmap =
        MakeBitmap(memory ? context->bitmap->raster.format : DisplayPixelFormat(), width, height);
    if (bitmap && bitmap->raster.palette != nullptr) {
        if (memory)
            std::copy(std::begin(context->bitmap->colors), std::end(context->bitmap->colors), bitmap->colors);
        else if (context->ground == DeviceContext::Ground::kWindow)
            TakeWindowColors(context->window, *bitmap);
    }
    return AddBitmap(std::move(bitmap));
}

TDKP_API HBITMAP CreateDIBSection(HDC, const BITMAPINFO* info, UINT usage, LPVOID* bits, HANDLE section, DWORD offset) {
    const TerminationDeferral deferral;
    if (bits != nullptr) *bits = nullptr;
    DibLayout layout;
    if (info == nullptr || usage != DIB_RGB_COLORS || !ParseDib(*info, &layout)) return nullptr;
    auto bitmap = std::make_shared<Bitmap>();
    const bool made = section == nullptr
                          ? bitmap->memory.Allocate(layout.imageSize)
                          : offset % kOffsetUnit == 0 && bitmap->memory.Map(section, offset, layout.imageSize);
    if (!made) return nullptr;
    ReadDibColors(*info, layout, bitmap->colors);
    const uint32_t* palette = layout.bits <= 8 ? bitmap->colors : nullptr;
    bitmap->raster = DibRaster(layout, bitmap->memory.Data(), layout.height, palette);
    bitmap->isSection = true;
    DescribeSection(layout, *info, section, offset, *bitmap);
    uint8_t* data = bitmap->memory.Data();
    const HBITMAP handle = AddBitmap(std::move(bitmap));
    if (handle != nullptr && bits != nullptr) *bits = data;
    return handle;
}

TDKP_API INT GetDIBits(HDC dc, HBITMAP handle, UINT firstLine, UINT lines, LPVOID bits, BITMAPINFO* info, UINT usage) {
    const auto context = FindContext(dc);
    const auto bitmap = ObjectTable::Instance().Find<Bitmap>(handle);
    if (!context || !bitmap || info == nullptr || usage != DIB_RGB_COLORS ||
        info->bmiHeader.biSize < sizeof(BITMAPINFOHEADER))
        return 0;
    BITMAPINFOHEADER& header = info->bmiHeader;
    if (header.biBitCount == 0) {
        FillHeader(*bitmap, header);
        return 1;
    }
    if (header.biCompression == BI_BITFIELDS) FillMasks(*bitmap, *info);
    DibLayout layout;
    if (!ParseDib(*info, &layout)) return 0;
    header.biPlanes = 1;
    header.biSizeImage = static_cast<DWORD>(layout.imageSize);
    uint32_t palette[kPaletteEntries] = {};
    if (layout.bits <= 8) FillColors(*bitmap, layout, *info, palette);
    return bits == nullptr ? layout.height : CopyLines(*bitmap, layout, palette, firstLine, lines, bits);
}
