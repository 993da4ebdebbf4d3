// Drawing and the display: what its depth makes of answers and pictures. On displays in memory of every depth.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>

#include "tests/platform/gdiSupport.h"
#include "tests/support/Picture.h"

namespace {

using gditest::Header;
using gditest::k32;
using gditest::Surface;

struct Depth {
    int depth;
    int bits;
    DWORD compression;
    DWORD masks[3];
    int colors;  // NUMCOLORS
};

class OnDisplay : public testing::TestWithParam<Depth> {
protected:
    void SetUp() override { ASSERT_TRUE(TdkpUseMemoryDisplay(640, 480, GetParam().depth)); }
    static void TearDownTestSuite() { TdkpUseMemoryDisplay(1920, 1080, 32); }
};

// A window of 40 by 30 pixels with a context of its own.
class Window {
public:
    explicit Window(DWORD style = WS_POPUP | WS_VISIBLE) {
        WNDCLASSA info = {};
        info.style = CS_OWNDC;
        info.lpfnWndProc = DefWindowProcA;
        info.lpszClassName = "gdiDisplayTest";
        RegisterClassA(&info);
        handle = CreateWindowExA(0, info.lpszClassName, "", style, 0, 0, 40, 30, nullptr, nullptr, nullptr, nullptr);
        dc = GetDC(handle);
    }
    ~Window() {
        ReleaseDC(handle, dc);
        DestroyWindow(handle);
        UnregisterClassA("gdiDisplayTest", nullptr);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    uint32_t Seen(int x, int y) const { return tdkviz::test::Picture(handle).At(x, y); }

    HWND handle;
    HDC dc;
};

TEST_P(OnDisplay, TellsItsFormat) {
    const HDC screen = CreateDCA("DISPLAY", nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, screen);
    EXPECT_EQ(640, GetDeviceCaps(screen, HORZRES));
    EXPECT_EQ(480, GetDeviceCaps(screen, VERTRES));
    EXPECT_EQ(GetParam().bits, GetDeviceCaps(screen, BITSPIXEL) * GetDeviceCaps(screen, PLANES));
    EXPECT_EQ(GetParam().colors, GetDeviceCaps(screen, NUMCOLORS));
    EXPECT_EQ(GetParam().colors >= 0, (GetDeviceCaps(screen, RASTERCAPS) & RC_PALETTE) != 0);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, 1, 1);
    Header info;
    std::memset(&info, 0, sizeof(info));
    info.header.biSize = sizeof(BITMAPINFOHEADER);
    // The first call fills in the header, the second the masks.
    EXPECT_NE(0, GetDIBits(screen, bitmap, 0, 1, nullptr, info.Info(), DIB_RGB_COLORS));
    EXPECT_EQ(0u, info.masks[0]);
    EXPECT_NE(0, GetDIBits(screen, bitmap, 0, 1, nullptr, info.Info(), DIB_RGB_COLORS));
    EXPECT_EQ(GetParam().bits, info.header.biBitCount);
    EXPECT_EQ(GetParam().compression, info.header.biCompression);
    EXPECT_EQ(1, info.header.biWidth);
    EXPECT_EQ(1, info.header.biHeight);
    for (int i = 0; i < 3 && GetParam().compression == BI_BITFIELDS; ++i) EXPECT_EQ(GetParam().masks[i], info.masks[i]);
    DeleteObject(bitmap);
    DeleteDC(screen);
}

TEST_P(OnDisplay, ShowsWhatIsBlittedToAWindow) {
    Window window;
    Surface picture(k32, 40, 30);
    picture.FillWithNoise(3);
    // Colours that every depth can show.
    const COLORREF colors[] = {RGB(0, 0, 0), RGB(255, 255, 255), RGB(255, 0, 0), RGB(0, 255, 0), RGB(0, 0, 255)};
    for (int i = 0; i < 5; ++i) SetPixel(picture.dc, 10 + i, 7, colors[i]);
    EXPECT_TRUE(BitBlt(window.dc, 0, 0, 40, 30, picture.dc, 0, 0, SRCCOPY));
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(picture.Color(10 + i, 7), window.Seen(10 + i, 7)) << i;
        EXPECT_EQ(colors[i], GetPixel(window.dc, 10 + i, 7)) << i;
    }
    EXPECT_EQ(CLR_INVALID, GetPixel(window.dc, 40, 7));
    // Part of the window to another place of it, the old and the new one overlapping.
    EXPECT_TRUE(BitBlt(window.dc, 12, 8, 20, 20, window.dc, 10, 7, SRCCOPY));
    for (int i = 0; i < 5; ++i) EXPECT_EQ(picture.Color(10 + i, 7), window.Seen(12 + i, 8)) << i;
}

INSTANTIATE_TEST_SUITE_P(Depths, OnDisplay,
                         testing::Values(Depth{32, 32, BI_BITFIELDS, {0xFF0000, 0xFF00, 0xFF}, -1},
                                         Depth{24, 32, BI_BITFIELDS, {0xFF0000, 0xFF00, 0xFF}, -1},
                                         Depth{16, 16, BI_BITFIELDS, {0xF800, 0x07E0, 0x001F}, -1},
                                         Depth{15, 16, BI_BITFIELDS, {0x7C00, 0x03E0, 0x001F}, -1},
                                         Depth{8, 8, BI_RGB, {}, 20}),
                         [](const auto& one) { return "Depth" + std::to_string(one.param.depth); });

TEST(WindowContext, ChildrenAreLeftOutWhereTheStyleSaysSo) {
    Window window(WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN);
    const HWND child = CreateWindowExA(0, "gdiDisplayTest", "", WS_CHILD | WS_VISIBLE, 10, 5, 10, 10, window.handle,
                                       nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, child);
    const HBRUSH red = CreateSolidBrush(RGB(255, 0, 0)), blue = CreateSolidBrush(RGB(0, 0, 255));
    const RECT all = {0, 0, 40, 30};
    const HDC childDc = GetDC(child);
    FillRect(childDc, &all, blue);
    FillRect(window.dc, &all, red);
    EXPECT_EQ(0xFF0000u, window.Seen(9, 5));
    EXPECT_EQ(0x0000FFu, window.Seen(10, 5));
    EXPECT_EQ(0x0000FFu, window.Seen(19, 14));
    EXPECT_EQ(0xFF0000u, window.Seen(20, 14));
    EXPECT_EQ(CLR_INVALID, GetPixel(window.dc, 12, 8));
    ReleaseDC(child, childDc);
    DeleteObject(red);
    DeleteObject(blue);
}

TEST(WindowContext, OutlivesItsWindowWithoutDrawing) {
    Window window;
    const HWND other =
        CreateWindowExA(0, "gdiDisplayTest", "", WS_POPUP, 0, 0, 5, 5, nullptr, nullptr, nullptr, nullptr);
    const HDC dc = GetDC(other);
    DestroyWindow(other);
    const RECT all = {0, 0, 5, 5};
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    BitBlt(window.dc, 0, 0, 5, 5, dc, 0, 0, SRCCOPY);
    TextOutA(dc, 0, 0, "x", 1);
    Rectangle(dc, 0, 0, 5, 5);
    EXPECT_EQ(CLR_INVALID, SetPixel(dc, 0, 0, 1));
    EXPECT_EQ(1, ReleaseDC(other, dc));
    EXPECT_EQ(nullptr, GetDC(other));
}

}  // namespace
