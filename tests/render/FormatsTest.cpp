#include <gtest/gtest.h>

#include <cstring>

#include "src/render/Formats.h"

namespace tdkviz {
namespace {

struct HeaderCase {
    DWORD compression;
    WORD bits;
    DWORD masks[3];
    uint32_t id;
};

BitmapInfoRecord MakeInfo(const HeaderCase& header, LONG width = 1) {
    BitmapInfoRecord info = {};
    info.Header.biSize = sizeof(BITMAPINFOHEADER);
    info.Header.biWidth = width;
    info.Header.biHeight = 1;
    info.Header.biCompression = header.compression;
    info.Header.biBitCount = header.bits;
    std::memcpy(info.Masks, header.masks, sizeof(info.Masks));
    return info;
}

constexpr DWORD FourCC(const char (&code)[5]) {
    return static_cast<DWORD>(code[0] | code[1] << 8 | code[2] << 16 | code[3] << 24);
}

constexpr HeaderCase kRgb24 = {BI_RGB, 24, {}, FormatRGB24};
constexpr HeaderCase kYuy2 = {FourCC("YUY2"), 16, {}, FormatYUY2};
constexpr HeaderCase kZvqn = {FourCC("ZVQN"), 16, {}, FormatZVQN};

TEST(FormatsTest, RecognisesHeaders) {
    const HeaderCase cases[] = {
        {BI_RGB, 32, {}, 5},
        {BI_RGB, 32, {1, 2, 3}, 5},
        {BI_RGB, 24, {}, 6},
        {BI_RGB, 16, {}, 8},
        {BI_RGB, 8, {}, 9},
        {BI_RGB, 4, {}, 13},
        {BI_RGB, 1, {}, 13},
        {BI_BITFIELDS, 32, {0x00FF0000, 0x0000FF00, 0x000000FF}, 5},
        {BI_BITFIELDS, 32, {0x000000FF, 0x0000FF00, 0x00FF0000}, 14},
        {BI_BITFIELDS, 32, {0xFF000000, 0x00FF0000, 0x0000FF00}, 5},
        {BI_BITFIELDS, 24, {0x00FF0000, 0x0000FF00, 0x000000FF}, 6},
        {BI_BITFIELDS, 24, {0x000000FF, 0x0000FF00, 0x00FF0000}, 15},
        {BI_BITFIELDS, 16, {0xF800, 0x07E0, 0x001F}, 7},
        {BI_BITFIELDS, 16, {0xF800, 0x07C0, 0x003E}, 7},
        {BI_BITFIELDS, 16, {0x7C00, 0x03E0, 0x001F}, 8},
        {BI_BITFIELDS, 16, {0x001F, 0x07E0, 0xF800}, 16},
        {BI_BITFIELDS, 16, {0x001F, 0x03E0, 0x7C00}, 17},
        {BI_BITFIELDS, 16, {0x000F, 0x00F0, 0x0F00}, 13},
        {BI_BITFIELDS, 32, {0, 0, 0}, 13},
        {FourCC("ARGB"), 24, {}, 13},
        {FourCC("ARGB"), 32, {}, 11},
        {FourCC("YUY2"), 9, {}, 3},
        {FourCC("3BGR"), 24, {}, 6},
        {FourCC("3BGR"), 16, {}, 13},
    };
    for (const HeaderCase& c : cases) {
        const BitmapInfoRecord info = MakeInfo(c);
        EXPECT_EQ(FormatFromBitmapInfo(&info), c.id) << std::hex << c.compression << " " << std::dec << c.bits;
    }
    EXPECT_EQ(FormatFromBitmapInfo(nullptr), FormatNone);
}

TEST(FormatsTest, SizesAndPitches) {
    const struct {
        uint32_t format;
        int32_t height, width;
        uint32_t bytes;
    } cases[] = {
        {FormatI420, 5, 3, 22},  {FormatYV12, 4, 4, 24},  {FormatYVU9, 5, 3, 16},
        {FormatUYVY, 3, 5, 30},  {FormatRGB32, 3, 5, 60}, {FormatRGB24, 7, 5, 112},
        {FormatRGB8, 3, 5, 24},  {FormatYUVA, 5, 3, 37},  {FormatARGB, 2, 1, 8},
        {FormatBGR555, 2, 1, 8}, {FormatZVQN, 3, 5, 0},   {FormatDVPF, 3, 5, 0},
        {FormatNone, 3, 5, 0},   {23, 3, 5, 0},           {0xFFFFFFFF, 3, 5, 0},
        {FormatRGB32, 0, 5, 0},  {FormatRGB32, 5, -1, 0}, {FormatRGB32, 65535, 65535, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(ImageSize(c.format, c.height, c.width), c.bytes) << c.format;

    const auto pitch = [](const HeaderCase& header, LONG width) {
        const BitmapInfoRecord info = MakeInfo(header, width);
        return RowPitch(&info);
    };
    EXPECT_EQ(pitch(kRgb24, 5), -16);
    EXPECT_EQ(pitch({BI_BITFIELDS, 16, {0x001F, 0x07E0, 0xF800}, 16}, 5), -12);
    EXPECT_EQ(pitch(kYuy2, 5), 10);
    EXPECT_EQ(pitch(kZvqn, 5), 768);
    EXPECT_EQ(pitch({0x12345678, 16, {}, 13}, 5), 0);
    EXPECT_EQ(RowPitch(nullptr), 0);
}

TEST(FormatsTest, FillBitmapInfoRefusals) {
    struct Case {
        const char* name;
        uint32_t capacity, format;
        int32_t width, height;
        bool palette;
        uint32_t paletteCount, result;
    };
    constexpr uint32_t kRoom = sizeof(BitmapInfoRecord);
    const Case cases[] = {
        {"plain", kRoom, FormatRGB32, 4, 4, false, 0, 40},
        {"exact room", 40, FormatRGB32, 4, 4, false, 0, 40},
        {"too little room", 39, FormatRGB32, 4, 4, false, 0, 0},
        {"masks", 52, FormatRGB565, 4, 4, false, 0, 52},
        {"no room for masks", 40, FormatRGB565, 4, 4, false, 0, 0},
        {"no format", kRoom, FormatNone, 4, 4, false, 0, 0},
        {"beyond the table", kRoom, 23, 4, 4, false, 0, 0},
        {"no width", kRoom, FormatRGB32, 0, 4, false, 0, 0},
        {"negative height", kRoom, FormatRGB32, 4, -4, false, 0, 0},
        {"8 bits without a palette", 40, FormatRGB8, 4, 4, false, 0, 40},
        {"full palette", kRoom, FormatRGB8, 4, 4, true, 256, 1064},
        {"short palette", 48, FormatRGB8, 4, 4, true, 2, 48},
        {"no room for the palette", 47, FormatRGB8, 4, 4, true, 2, 0},
        {"palette too long", kRoom, FormatRGB8, 4, 4, true, 257, 0},
        {"count without palette", kRoom, FormatRGB8, 4, 4, false, 2, 0},
        {"a palette that isn't wanted", 40, FormatRGB32, 4, 4, true, 300, 40},
    };
    static const PaletteColor kPalette[256] = {{1, 2, 3, 9}, {4, 5, 6, 9}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BitmapInfoRecord info, before;
        std::memset(static_cast<void*>(&info), 0xCD, sizeof(info));
        before = info;
        const PaletteColor* palette = c.palette ? kPalette : nullptr;
        EXPECT_EQ(FillBitmapInfo(&info, c.capacity, c.format, c.width, c.height, palette, c.paletteCount), c.result);
        const auto* bytes = reinterpret_cast<const uint8_t*>(&info);
        const auto* old = reinterpret_cast<const uint8_t*>(&before);
        EXPECT_EQ(std::memcmp(bytes + c.result, old + c.result, sizeof(info) - c.result), 0) << "wrote too far";
        if (c.result == 0) continue;
        EXPECT_EQ(info.Header.biHeight, 4);
        EXPECT_EQ(info.Header.biSizeImage, ImageSize(c.format, 4, 4));
        EXPECT_EQ(FormatFromBitmapInfo(&info), c.format);
        if (c.result <= 52 && c.format != FormatRGB8) continue;
        EXPECT_EQ(info.Header.biClrUsed, c.paletteCount == 256 ? 0 : c.paletteCount);
        if (c.paletteCount == 0) continue;
        const RGBQUAD& entry = info.Palette[1];
        EXPECT_EQ(entry.rgbRed * 100 + entry.rgbGreen * 10 + entry.rgbBlue, 456);
        EXPECT_EQ(entry.rgbReserved, 0);
    }
    EXPECT_EQ(FillBitmapInfo(nullptr, kRoom, FormatRGB32, 4, 4, nullptr, 0), 0u);
}

}  // namespace
}  // namespace tdkviz
