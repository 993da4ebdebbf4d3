// Bitmaps, their headers and their handles.
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/platform/gdiSupport.h"

namespace {

using namespace gditest;

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
