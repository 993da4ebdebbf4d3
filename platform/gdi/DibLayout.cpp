#include "platform/gdi/DibLayout.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <limits>

#include "platform/gdi/PixelCodec.h"

namespace tdkp {
namespace {

constexpr DWORD kHeaderSize = sizeof(BITMAPINFOHEADER);

struct MaskRow {
    PixelFormat format;
    int bits;
    DWORD masks[3];
};

constexpr MaskRow kMaskRows[] = {
    {PixelFormat::kRgb555, 16, {0x7C00, 0x03E0, 0x001F}},
    {PixelFormat::kRgb565, 16, {0xF800, 0x07E0, 0x001F}},
    {PixelFormat::kRgb32, 32, {0x00FF0000, 0x0000FF00, 0x000000FF}},
    {PixelFormat::kBgr32, 32, {0x000000FF, 0x0000FF00, 0x00FF0000}},
};

PixelFormat FormatOfMasks(int bits, const DWORD* masks) {
    const auto* row = std::find_if(std::begin(kMaskRows), std::end(kMaskRows), [&](const MaskRow& candidate) {
        return candidate.bits == bits && std::equal(masks, masks + 3, candidate.masks);
    });
    return row != std::end(kMaskRows) ? row->format : PixelFormat::kNone;
}

uint8_t* BehindHeader(BITMAPINFO& info) {
    return reinterpret_cast<uint8_t*>(&info) + kHeaderSize;
}

}  // namespace

PixelFormat FormatOfBits(int bits) {
    switch (bits) {
        case 1:
            return PixelFormat::kMono;
        case 8:
            return PixelFormat::kIndexed8;
        case 16:
            return PixelFormat::kRgb555;
        case 24:
            return PixelFormat::kRgb24;
        case 32:
            return PixelFormat::kRgb32;
        default:
            return PixelFormat::kNone;
    }
}

bool ParseDib(const BITMAPINFO& info, DibLayout* layout) {
    const BITMAPINFOHEADER& header = info.bmiHeader;
    if (header.biSize < kHeaderSize || header.biWidth <= 0 || header.biHeight == 0 ||
        header.biHeight == std::numeric_limits<LONG>::min())
        return false;
    layout->width = header.biWidth;
    layout->height = std::abs(header.biHeight);
    layout->topDown = header.biHeight < 0;
    layout->bits = header.biBitCount;
    layout->compression = header.biCompression;
    if (header.biCompression == BI_BITFIELDS)
        layout->format = FormatOfMasks(layout->bits, DibMasks(const_cast<BITMAPINFO&>(info)));
    else
        layout->format = header.biCompression == BI_RGB ? FormatOfBits(layout->bits) : PixelFormat::kNone;
    const int64_t pitch = DibPitch(layout->bits, layout->width);
    if (layout->format == PixelFormat::kNone || pitch > std::numeric_limits<LONG>::max() / layout->height) return false;
    layout->pitch = static_cast<size_t>(pitch);
    layout->imageSize = layout->pitch * static_cast<size_t>(layout->height);
    return true;
}

Raster DibRaster(const DibLayout& layout, uint8_t* bits, int lines, const uint32_t* palette) {
    const int32_t pitch = static_cast<int32_t>(layout.pitch);
    if (layout.topDown) return {bits, pitch, layout.width, lines, layout.format, palette};
    return {bits + layout.pitch * static_cast<size_t>(lines - 1), -pitch, layout.width, lines, layout.format, palette};
}

DWORD* DibMasks(BITMAPINFO& info) {
    // The longer headers have them in the same place.
    return reinterpret_cast<DWORD*>(BehindHeader(info));
}

RGBQUAD* DibColors(BITMAPINFO& info) {
    const BITMAPINFOHEADER& header = info.bmiHeader;
    const bool masksBetween = header.biSize == kHeaderSize && header.biCompression == BI_BITFIELDS;
    const size_t offset = header.biSize + (masksBetween ? 3 * sizeof(DWORD) : 0);
    return reinterpret_cast<RGBQUAD*>(reinterpret_cast<uint8_t*>(&info) + offset);
}

void ReadDibColors(const BITMAPINFO& info, const DibLayout& layout, uint32_t* palette) {
    if (layout.bits > 8) return;
    const DWORD all = 1u << layout.bits;
    const DWORD used = info.bmiHeader.biClrUsed == 0 ? all : std::min(info.bmiHeader.biClrUsed, all);
    const RGBQUAD* colors = DibColors(const_cast<BITMAPINFO&>(info));
    for (DWORD i = 0; i < all; ++i) palette[i] = i < used ? ColorFromQuad(colors[i]) : 0;
}

bool MasksOf(PixelFormat format, DWORD masks[3]) {
    for (const MaskRow& row : kMaskRows) {
        if (row.format == format) {
            std::copy(row.masks, row.masks + 3, masks);
            return true;
        }
    }
    return false;
}

}  // namespace tdkp
