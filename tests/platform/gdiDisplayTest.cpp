// Drawing on windows, on displays in memory of every depth.
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/platform/gdiSupport.h"
#include "tests/platform/userSupport.h"
#include "tests/support/Picture.h"

namespace {

using gditest::k32;
using gditest::Surface;

class OnDisplay : public testing::TestWithParam<int> {
protected:
    void SetUp() override { ASSERT_TRUE(TdkpUseMemoryDisplay(640, 480, GetParam())); }
    static void TearDownTestSuite() { TdkpUseMemoryDisplay(1920, 1080, 32); }
};

// A window of 40 by 30 pixels with a context of its own.
class Window {
public:
    explicit Window(DWORD style = WS_POPUP | WS_VISIBLE) : handle(windows.Make(style)), dc(GetDC(handle)) {}
    ~Window() {
        ReleaseDC(handle, dc);
        DestroyWindow(handle);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    uint32_t Seen(int x, int y) const { return tdkviz::test::Picture(handle).At(x, y); }

    usertest::TestClass windows{CS_OWNDC};
    const HWND handle;
    const HDC dc;
};

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

INSTANTIATE_TEST_SUITE_P(Depths, OnDisplay, testing::Values(32, 24, 16, 15, 8),
                         [](const auto& one) { return "Depth" + std::to_string(one.param); });

TEST(WindowContext, ChildrenAreLeftOutWhereTheStyleSaysSo) {
    Window window(WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN);
    const HWND child = window.windows.Make(WS_CHILD | WS_VISIBLE, window.handle, 10, 10);
    MoveWindow(child, 10, 5, 10, 10, FALSE);
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
    const HWND other = window.windows.Make(WS_POPUP, nullptr, 5, 5);
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
