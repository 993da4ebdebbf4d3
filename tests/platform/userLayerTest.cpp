// Windows on the memory display: what is seen of them, and input that a program feeds.
#include <gtest/gtest.h>
#include <windows.h>

#include <tdkplatform.h>

#include <poll.h>

#include <atomic>

#include "tests/platform/userSupport.h"
#include "tests/support/Picture.h"

using namespace usertest;
using tdkviz::test::Picture;

namespace {

constexpr DWORD kRed = 0xFF0000;
constexpr DWORD kBlue = 0x0000FF;

void Fill(HWND window, COLORREF color) {
    const HDC dc = GetDC(window);
    const HBRUSH brush = CreateSolidBrush(color);
    RECT client;
    GetClientRect(window, &client);
    FillRect(dc, &client, brush);
    DeleteObject(brush);
    ReleaseDC(window, dc);
}

bool Readable(int descriptor) {
    pollfd wanted = {descriptor, POLLIN, 0};
    return poll(&wanted, 1, 0) == 1;
}

}  // namespace

TEST(UserLayer, AVisibleWindowShowsItsBackgroundAndItsChildrenAboveIt) {
    TestClass windows(0, CreateSolidBrush(RGB(255, 0, 0)));
    const HWND parent = windows.Make(WS_POPUP | WS_VISIBLE, nullptr, 60, 40);
    const HWND child = windows.Make(WS_CHILD | WS_VISIBLE, parent, 10, 10);
    const HWND hidden = windows.Make(WS_CHILD, parent, 60, 40);
    MoveWindow(child, 55, 5, 10, 10, TRUE);
    Fill(child, RGB(0, 0, 255));
    Picture picture(parent);
    EXPECT_EQ(picture.width, 60);
    EXPECT_EQ(picture.height, 40);
    EXPECT_EQ(picture.At(0, 0), kRed);
    EXPECT_EQ(picture.At(55, 5), kBlue);
    EXPECT_EQ(picture.At(59, 14), kBlue);
    EXPECT_EQ(picture.At(59, 15), kRed);
    DWORD few[4];
    EXPECT_FALSE(TdkpReadWindow(parent, few, 4, nullptr, nullptr));
    MoveWindow(parent, 0, 0, 80, 50, TRUE);
    picture = Picture(parent);
    EXPECT_EQ(picture.At(0, 0), kRed) << "kept";
    EXPECT_EQ(picture.At(79, 49), kRed) << "erased where it grew";
    EXPECT_EQ(picture.At(64, 5), kBlue);
    // The first child made is the topmost.
    ShowWindow(hidden, SW_SHOW);
    EXPECT_EQ(Picture(parent).At(55, 5), kBlue);
    BringWindowToTop(hidden);
    EXPECT_EQ(Picture(parent).At(55, 5), kRed);
    DestroyWindow(parent);
}

TEST(UserLayer, AnOwnContextWindowHasAPictureWhileItsContextIsHeld) {
    TestClass windows(CS_OWNDC, CreateSolidBrush(RGB(255, 0, 0)));
    const HWND window = windows.Make(WS_POPUP | WS_VISIBLE);
    const HDC held = GetDC(window);
    Fill(window, RGB(0, 0, 255));
    EXPECT_EQ(Picture(window).At(3, 3), kBlue) << "another context came and went";
    ReleaseDC(window, held);
    EXPECT_EQ(Picture(window).At(3, 3), 0u);
    InvalidateRect(window, nullptr, TRUE);
    ServeMessages();
    EXPECT_EQ(Picture(window).At(3, 3), 0u) << "the layer painted over a window that paints itself";
    Fill(window, RGB(0, 0, 255));
    EXPECT_EQ(Picture(window).At(3, 3), 0u);
    const HDC again = GetDC(window);
    Fill(window, RGB(0, 0, 255));
    EXPECT_EQ(Picture(window).At(3, 3), kBlue);
    ReleaseDC(window, again);
    DestroyWindow(window);
}

TEST(UserLayer, MouseFindsItsWindowAndTheCapture) {
    TestClass windows;
    const HWND parent = windows.Make(WS_POPUP | WS_VISIBLE, nullptr, 100, 100);
    const HWND child = windows.Make(WS_CHILD | WS_VISIBLE, parent, 20, 20);
    MoveWindow(child, 50, 50, 20, 20, TRUE);
    ServeMessages();
    windows.Take({});
    struct Case {
        const char* name;
        int x, y;
        bool captured;
        bool disabled;
        HWND window;
        LPARAM point;
    };
    const Case cases[] = {
        {"parent", 10, 20, false, false, parent, MAKELPARAM(10, 20)},
        {"child", 55, 60, false, false, child, MAKELPARAM(5, 10)},
        {"captured", 10, 20, true, false, child, MAKELPARAM(static_cast<WORD>(-40), static_cast<WORD>(-30))},
        {"disabled child", 55, 60, false, true, parent, MAKELPARAM(55, 60)},
    };
    for (const Case& test : cases) {
        SetCapture(test.captured ? child : nullptr);
        EnableWindow(child, !test.disabled);
        TdkpFeedMouse(parent, WM_MOUSEMOVE, 0, 1, 1);
        TdkpFeedMouse(parent, WM_MOUSEMOVE, 0, test.x, test.y);
        ServeMessages();
        const auto got = windows.Take({WM_MOUSEMOVE});
        ASSERT_FALSE(got.empty()) << test.name;
        EXPECT_EQ(got.back().window, test.window) << test.name;
        EXPECT_EQ(got.back().lParam, test.point) << test.name;
    }
    SetCapture(nullptr);
    DestroyWindow(parent);
}

TEST(UserLayer, AButtonTellsItsParent) {
    constexpr INT kId = 1051;
    TestClass windows;
    const HWND parent = windows.Make(WS_POPUP | WS_VISIBLE, nullptr, 100, 60);
    const HWND button =
        CreateWindowExA(0, "BUTTON", "&Go", WS_CHILD | WS_VISIBLE, 10, 10, 60, 24, parent,
                        reinterpret_cast<HMENU>(static_cast<LONG_PTR>(kId)), GetModuleHandleA(nullptr), nullptr);
    ASSERT_NE(button, nullptr);
    ServeMessages();
    const Picture up(button);
    windows.Take({});
    const auto mouse = [&](UINT message, int x) { TdkpFeedMouse(button, message, MK_LBUTTON, x, 5), ServeMessages(); };
    mouse(WM_LBUTTONDOWN, 5);
    EXPECT_NE(Picture(button).pixels, up.pixels);
    mouse(WM_LBUTTONUP, 5);
    auto clicked = windows.Take({WM_COMMAND});
    ASSERT_EQ(clicked.size(), 1u);
    EXPECT_EQ(clicked[0].window, parent);
    EXPECT_EQ(clicked[0].wParam, MAKEWPARAM(kId, BN_CLICKED));
    EXPECT_EQ(clicked[0].lParam, reinterpret_cast<LPARAM>(button));
    mouse(WM_LBUTTONDOWN, 5);
    mouse(WM_MOUSEMOVE, 500);
    mouse(WM_LBUTTONUP, 500);
    EXPECT_TRUE(windows.Take({WM_COMMAND}).empty()) << "let go outside";
    EXPECT_EQ(GetCapture(), nullptr);
    DestroyWindow(parent);
}

TEST(UserLayer, TheDescriptorTellsWhatWaits) {
    TestClass windows;
    const HWND window = windows.Make(WS_POPUP | WS_VISIBLE);
    const int descriptor = TdkpMessageFd();
    ASSERT_GE(descriptor, 0);
    EXPECT_TRUE(Readable(descriptor)) << "the window waits to be painted";
    EXPECT_GT(TdkpDispatchMessages(), 0u);
    EXPECT_FALSE(Readable(descriptor));
    EXPECT_EQ(TdkpDispatchMessages(), 0u);
    std::atomic<bool> done{false};
    TestThread sender([&] {
        SendMessageA(window, WM_USER, 0, 0);
        done = true;
    });
    pollfd wanted = {descriptor, POLLIN, 0};
    EXPECT_EQ(poll(&wanted, 1, tdkviz::test::kPatienceMilliseconds), 1);
    EXPECT_FALSE(done);
    TdkpDispatchMessages();
    sender.Join();
    EXPECT_FALSE(Readable(descriptor));
    SetTimer(window, 1, 10, nullptr);
    EXPECT_EQ(poll(&wanted, 1, tdkviz::test::kPatienceMilliseconds), 1);
    EXPECT_EQ(TdkpDispatchMessages(), 1u);
    DestroyWindow(window);
    EXPECT_FALSE(Readable(descriptor));
}
