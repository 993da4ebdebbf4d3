#include "src/render/Formats.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

namespace tdkviz {

namespace {

enum class Family : uint8_t { Yuv, Rgb, Bgr, Hardware, None };

// What a descriptor compares.
constexpr uint8_t kTestCompression = 1;
constexpr uint8_t kTestBitCount = 2;
constexpr uint8_t kTestMasks = 4;
constexpr uint8_t kTestDepth = kTestCompression | kTestBitCount;
constexpr uint8_t kTestAll = kTestDepth | kTestMasks;

constexpr int32_t kZvqnPitch = 768;
constexpr WORD kLastPaletteBits = 8;

constexpr DWORD Code(const char (&text)[5]) {
    DWORD code = 0;
    for (int i = 3; i >= 0; --i) code = code << 8 | static_cast<uint8_t>(text[i]);
    return code;
}

struct Descriptor {
    uint8_t Tests;
    DWORD Compression;
    WORD BitCount;
    DWORD Masks[3];

    bool Matches(const BitmapInfoRecord& info) const {
        if ((Tests & kTestCompression) && info.Header.biCompression != Compression) return false;
        if ((Tests & kTestBitCount) && info.Header.biBitCount != BitCount) return false;
        return !(Tests & kTestMasks) || std::equal(Masks, Masks + 3, info.Masks);
    }
};

struct FormatRow {
    bool Valid;
    Family Colors;
    int32_t BytesPerPixel;
    Descriptor Header;
};

constexpr FormatRow Coded(Family family, int32_t bytes, const char (&code)[5], WORD bits,
                          uint8_t tests = kTestCompression) {
    return {true, family, bytes, {tests, Code(code), bits, {}}};
}
constexpr FormatRow Plain(int32_t bytes, WORD bits) {
    return {true, Family::Rgb, bytes, {kTestDepth, BI_RGB, bits, {}}};
}
constexpr FormatRow Masked(Family family, int32_t bytes, WORD bits, DWORD red, DWORD green, DWORD blue) {
    return {true, family, bytes, {kTestAll, BI_BITFIELDS, bits, {red, green, blue}}};
}

// By id.
constexpr FormatRow kFormats[kFormatCount] = {
    Coded(Family::Yuv, 1, "I420", 12),
    Coded(Family::Yuv, 1, "YV12", 12),
    Coded(Family::Yuv, 1, "YVU9", 9),
    Coded(Family::Yuv, 2, "YUY2", 16),
    Coded(Family::Yuv, 2, "UYVY", 16),
    Plain(4, 32),
    Plain(3, 24),
    Masked(Family::Rgb, 2, 16, 0xF800, 0x07E0, 0x001F),
    Masked(Family::Rgb, 2, 16, 0x7C00, 0x03E0, 0x001F),
    Plain(1, 8),
    Coded(Family::Yuv, 1, "ZVQN", 16),
    Coded(Family::Rgb, 4, "ARGB", 32, kTestDepth),
    Coded(Family::Yuv, 1, "YUVA", 20),
    {false, Family::None, 0, {}},
    Masked(Family::Bgr, 4, 32, 0x000000FF, 0x0000FF00, 0x00FF0000),
    Masked(Family::Bgr, 3, 24, 0x000000FF, 0x0000FF00, 0x00FF0000),
    Masked(Family::Bgr, 2, 16, 0x001F, 0x07E0, 0xF800),
    Masked(Family::Bgr, 2, 16, 0x001F, 0x03E0, 0x7C00),
    Coded(Family::Hardware, 1, "MC12", 12),
    Coded(Family::Hardware, 1, "MCAM", 12),
    Coded(Family::Hardware, 1, "MCS3", 12),
    Coded(Family::Hardware, 1, "IGOR", 12),
    Coded(Family::Yuv, 1, "DVPF", 12),
};

struct AliasRow {
    FormatId Id;
    Descriptor Header;
};

// In the order of the search; the last row matches anything.
constexpr AliasRow kAliases[] = {
    {FormatI420, {kTestCompression, 0x59555632, 12, {}}},
    {FormatYUVA, {kTestCompression, 0x41565559, 20, {}}},
    {FormatRGB32, {kTestAll, BI_BITFIELDS, 32, {0xFF000000, 0x00FF0000, 0x0000FF00}}},
    {FormatRGB565, {kTestAll, BI_BITFIELDS, 16, {0xF800, 0x07C0, 0x003E}}},
    {FormatRGB32, {kTestAll, BI_BITFIELDS, 32, {0x00FF0000, 0x0000FF00, 0x000000FF}}},
    {FormatRGB32, {kTestDepth, 0x52474233, 32, {}}},
    {FormatRGB24, {kTestAll, BI_BITFIELDS, 24, {0x00FF0000, 0x0000FF00, 0x000000FF}}},
    {FormatRGB24, {kTestDepth, 0x52474233, 24, {}}},
    {FormatRGB24, {kTestCompression, 0x20524742, 24, {}}},
    {FormatRGB565, {kTestCompression, 0x52474236, 16, {}}},
    {FormatRGB555, {kTestDepth, BI_RGB, 16, {}}},
    {FormatRGB555, {kTestCompression, 0x52474235, 16, {}}},
    {FormatRGB8, {kTestCompression, 0x38424954, 8, {}}},
    {FormatNone, {0, 0, 0, {}}},
};

const FormatRow* FindRow(uint32_t format) {
    return format < kFormatCount && kFormats[format].Valid ? &kFormats[format] : nullptr;
}

constexpr int64_t PadToFour(int64_t bytes) {
    return (bytes + 3) & ~int64_t{3};
}

void CopyPalette(BitmapInfoRecord& info, const Descriptor& header, const PaletteColor* palette, uint32_t count) {
    const uint32_t full = 1u << header.BitCount;
    const uint32_t copied = std::min(count, full);
    for (uint32_t i = 0; i < copied; ++i) {
        info.Palette[i] = {palette[i].Blue, palette[i].Green, palette[i].Red, 0};
    }
    // 0 stands for a full palette.
    const DWORD used = copied == full ? 0 : copied;
    info.Header.biClrUsed = used;
    info.Header.biClrImportant = used;
}

}  // namespace

FormatId FormatFromBitmapInfo(const BitmapInfoRecord* info) {
    if (!info) return FormatNone;
    for (uint32_t id = 0; id < kFormatCount; ++id) {
        if (kFormats[id].Valid && kFormats[id].Header.Matches(*info)) return static_cast<FormatId>(id);
    }
    return std::find_if(std::begin(kAliases), std::end(kAliases) - 1,
                        [info](const AliasRow& row) { return row.Header.Matches(*info); })
        ->Id;
}

uint32_t ImageSize(uint32_t format, int32_t height, int32_t width) {
    const FormatRow* row = FindRow(format);
    if (!row || width < 1 || height < 1) return 0;
    const int64_t pixels = int64_t{width} * height;
    int64_t bytes = 0;
    if (row->Colors == Family::Rgb || row->Colors == Family::Bgr) {
        const int64_t pitch = PadToFour(int64_t{row->BytesPerPixel} * width);
        if (pitch > std::numeric_limits<uint32_t>::max() / height) return 0;
        bytes = pitch * height;
    } else {
        switch (format) {
            case FormatI420:
            case FormatYV12:
                bytes = (pixels * 3) >> 1;
                break;
            case FormatYVU9:
                bytes = (pixels * 9) >> 3;
                break;
            case FormatYUY2:
            case FormatUYVY:
                bytes = pixels * 2;
                break;
            case FormatYUVA:
                bytes = (pixels * 5) >> 1;
                break;
            default:
                break;
        }
    }
    return bytes <= std::numeric_limits<uint32_t>::max() ? static_cast<uint32_t>(bytes) : 0;
}

int32_t RowPitch(const BitmapInfoRecord* info) {
    const FormatId format = FormatFromBitmapInfo(info);
    const FormatRow* row = FindRow(format);
    if (!row) return 0;
    if (format == FormatZVQN) return kZvqnPitch;
    const int64_t bytes = int64_t{row->BytesPerPixel} * info->Header.biWidth;
    const bool bottomUp = row->Colors == Family::Rgb || row->Colors == Family::Bgr;
    return static_cast<int32_t>(bottomUp ? -PadToFour(bytes) : bytes);
}

uint32_t FillBitmapInfo(BitmapInfoRecord* info, uint32_t capacity, uint32_t format, int32_t width, int32_t height,
                        const PaletteColor* palette, uint32_t paletteCount) {
    const FormatRow* row = FindRow(format);
    if (!info || !row || width < 1 || height < 1) return 0;
    const Descriptor& header = row->Header;
    const bool masks = (header.Tests & kTestMasks) != 0;
    const bool colors = (header.Tests & kTestDepth) == kTestDepth && header.Compression == BI_RGB &&
                        header.BitCount <= kLastPaletteBits && paletteCount != 0;
    if (colors && (!palette || paletteCount > kPaletteEntries)) return 0;
    uint32_t size = sizeof(BITMAPINFOHEADER);
    if (masks) size += sizeof(info->Masks);
    if (colors) size += paletteCount * sizeof(RGBQUAD);
    if (capacity < size) return 0;

    std::memset(static_cast<void*>(info), 0, size);
    info->Header.biSize = sizeof(BITMAPINFOHEADER);
    info->Header.biPlanes = 1;
    info->Header.biWidth = width;
    info->Header.biHeight = height;
    info->Header.biSizeImage = ImageSize(format, height, width);
    info->Header.biCompression = header.Compression;
    info->Header.biBitCount = header.BitCount;
    if (masks) std::copy(header.Masks, header.Masks + 3, info->Masks);
    if (colors) CopyPalette(*info, header, palette, paletteCount);
    return size;
}

FormatId GetDisplayFormat() {
    const HDC display = CreateDCA("DISPLAY", nullptr, nullptr, nullptr);
    if (!display) return FormatNone;
    BitmapInfoRecord info = {};
    info.Header.biSize = sizeof(BITMAPINFOHEADER);
    if (const HBITMAP bitmap = CreateCompatibleBitmap(display, 1, 1)) {
        auto* header = reinterpret_cast<BITMAPINFO*>(&info);
        // The first call fills in the header, the second the masks.
        GetDIBits(display, bitmap, 0, 1, nullptr, header, DIB_RGB_COLORS);
        GetDIBits(display, bitmap, 0, 1, nullptr, header, DIB_RGB_COLORS);
        DeleteObject(bitmap);
    }
    DeleteDC(display);
    return FormatFromBitmapInfo(&info);
}

}  // namespace tdkviz
