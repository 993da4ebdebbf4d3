// Bitmaps, their headers and their handles.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "tests/platform/gdiSupport.h"

namespace {

using namespace gditest;

TEST(Bitmap, PositiveHeightIsBottomUp) {
    for (const int height : {4, -4}) {
        Surface surface(k32, 3, height);
        SetPixel(surface.dc, 1, 0, RGB(1, 2, 3));
        DIBSECTION section;
        ASSERT_EQ(static_cast<int>(sizeof(section)), GetObjectA(surface.bitmap, sizeof(section), &section));
        const auto* pixels = static_cast<const uint32_t*>(section.dsBm.bmBits);
        EXPECT_EQ(0x010203u, pixels[height > 0 ? 3 * 3 + 1 : 1]) << height;
        EXPECT_EQ(4, section.dsBm.bmHeight);
        EXPECT_EQ(3, section.dsBm.bmWidth);
        EXPECT_EQ(12, section.dsBm.bmWidthBytes);
        EXPECT_EQ(32, section.dsBm.bmBitsPixel);
        EXPECT_EQ(48u, section.dsBmih.biSizeImage);
    }
}

TEST(Bitmap, SectionsShareTheBytesOfTheirMapping) {
    const HANDLE mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 20000, nullptr);
    ASSERT_NE(nullptr, mapping);
    Header info = MakeHeader(k32, 4, 4);
    void *first = nullptr, *second = nullptr;
    const HBITMAP whole = CreateDIBSection(nullptr, info.Info(), DIB_RGB_COLORS, &first, mapping, 0);
    const HBITMAP shifted = CreateDIBSection(nullptr, info.Info(), DIB_RGB_COLORS, &second, mapping, 8);
    // An offset behind the first page, and the last bytes of the mapping.
    void* distant = nullptr;
    const HBITMAP last = CreateDIBSection(nullptr, info.Info(), DIB_RGB_COLORS, &distant, mapping, 20000 - 64);
    ASSERT_TRUE(whole && shifted && last);
    static_cast<uint32_t*>(distant)[15] = 5;
    static_cast<uint32_t*>(first)[3] = 0x123456;
    EXPECT_EQ(0x123456u, static_cast<uint32_t*>(second)[1]);
    // Drawing is seen through the mapping as well.
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ former = SelectObject(dc, shifted);
    SetPixel(dc, 0, 3, RGB(9, 8, 7));
    SelectObject(dc, former);
    EXPECT_EQ(0x090807u, static_cast<uint32_t*>(first)[2]);
    DIBSECTION section;
    GetObjectA(shifted, sizeof(section), &section);
    EXPECT_EQ(mapping, section.dshSection);
    EXPECT_EQ(8u, section.dsOffset);
    EXPECT_EQ(nullptr, CreateDIBSection(nullptr, info.Info(), DIB_RGB_COLORS, nullptr, mapping, 20000 - 60));
    EXPECT_EQ(nullptr, CreateDIBSection(nullptr, info.Info(), DIB_RGB_COLORS, nullptr, mapping, 2));
    // The mapping's bytes stay while a bitmap shows them.
    CloseHandle(mapping);
    static_cast<uint32_t*>(first)[3] = 7;
    EXPECT_EQ(7u, static_cast<uint32_t*>(second)[1]);
    for (const HBITMAP bitmap : {whole, shifted, last}) EXPECT_TRUE(DeleteObject(bitmap));
    DeleteDC(dc);
}

TEST(Bitmap, HeadersThatDescribeNothingAreRefused) {
    struct Case {
        const char* name;
        void (*spoil)(Header& info);
    };
    const Case cases[] = {
        {"no width", [](Header& info) { info.header.biWidth = 0; }},
        {"width below 0", [](Header& info) { info.header.biWidth = -5; }},
        {"no height", [](Header& info) { info.header.biHeight = 0; }},
        {"lowest height", [](Header& info) { info.header.biHeight = static_cast<LONG>(0x80000000); }},
        {"too large", [](Header& info) { info.header.biWidth = info.header.biHeight = 0x7FFFFFFF; }},
        {"short header", [](Header& info) { info.header.biSize = 20; }},
        {"odd depth", [](Header& info) { info.header.biBitCount = 7; }},
        {"unknown form", [](Header& info) { info.header.biCompression = 0x32595559; }},
    };
    for (const Case& one : cases) {
        Header info = MakeHeader(k32, 4, 4);
        one.spoil(info);
        void* bits = &info;
        EXPECT_EQ(nullptr, CreateDIBSection(nullptr, info.Info(), DIB_RGB_COLORS, &bits, nullptr, 0)) << one.name;
    }
    EXPECT_EQ(nullptr, CreateDIBSection(nullptr, nullptr, DIB_RGB_COLORS, nullptr, nullptr, 0));
    EXPECT_EQ(nullptr, CreateBitmap(-1, 4, 1, 32, nullptr));
}

TEST(Bitmap, GetDIBitsGivesTheLinesAskedFor) {
    Surface from(k32, 2, 6);
    for (int y = 0; y < 6; ++y) from.SetRaw(0, y, static_cast<uint32_t>(y));
    Header info = MakeHeader(k32, 2, 6);
    uint32_t lines[2 * 6] = {};
    // Line 0 is the bottom one.
    EXPECT_EQ(2, GetDIBits(from.dc, from.bitmap, 1, 2, lines, info.Info(), DIB_RGB_COLORS));
    EXPECT_EQ(4u, lines[0]);
    EXPECT_EQ(3u, lines[2]);
    EXPECT_EQ(0u, lines[4]);
    EXPECT_EQ(2, GetDIBits(from.dc, from.bitmap, 4, 100, lines, info.Info(), DIB_RGB_COLORS));
    EXPECT_EQ(0, GetDIBits(from.dc, from.bitmap, 6, 1, lines, info.Info(), DIB_RGB_COLORS));
    EXPECT_EQ(0, GetDIBits(from.dc, nullptr, 0, 1, lines, info.Info(), DIB_RGB_COLORS));
}

TEST(Handles, ABitmapIsInOneContextAndStaysWhileItIs) {
    const HDC first = CreateCompatibleDC(nullptr), second = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateBitmap(4, 4, 1, 32, nullptr);
    const HGDIOBJ original = SelectObject(first, bitmap);
    EXPECT_NE(nullptr, original);
    EXPECT_EQ(bitmap, SelectObject(first, bitmap));
    EXPECT_EQ(bitmap, GetCurrentObject(first, OBJ_BITMAP));
    EXPECT_EQ(nullptr, SelectObject(second, bitmap));
    EXPECT_FALSE(DeleteObject(bitmap));
    EXPECT_EQ(bitmap, SelectObject(first, original));
    EXPECT_NE(nullptr, SelectObject(second, bitmap));
    EXPECT_TRUE(DeleteDC(second));
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_FALSE(DeleteObject(bitmap));
    EXPECT_EQ(nullptr, SelectObject(first, bitmap));
    EXPECT_TRUE(DeleteDC(first));
    EXPECT_FALSE(DeleteDC(first));
}

TEST(Handles, OldHandlesDontMeanNewObjects) {
    const HBRUSH first = CreateSolidBrush(1);
    DeleteObject(first);
    const HBRUSH second = CreateSolidBrush(2);
    EXPECT_NE(first, second);
    EXPECT_EQ(0, GetObjectA(first, 0, nullptr));
    LOGBRUSH description;
    EXPECT_EQ(static_cast<int>(sizeof(description)), GetObjectA(second, sizeof(description), &description));
    EXPECT_EQ(2u, description.lbColor);
    DeleteObject(second);
}

TEST(Handles, SomethingSelectedWorksAfterItsDeletion) {
    Surface surface(k32, 4, 4);
    const HPEN pen = CreatePen(PS_SOLID, 1, RGB(0, 0, 255));
    SelectObject(surface.dc, pen);
    DeleteObject(pen);
    MoveToEx(surface.dc, 0, 0, nullptr);
    LineTo(surface.dc, 2, 0);
    EXPECT_EQ(0x0000FFu, surface.Color(1, 0));
}

}  // namespace
