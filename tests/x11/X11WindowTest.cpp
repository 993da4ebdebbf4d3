// What only a server shows: windows inside those of others, colours as people see them, input, and ends that
// nobody here asked for.
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <map>
#include <memory>
#include <thread>

#include "tests/x11/AppWindow.h"
#include "tests/x11/ForeignClient.h"
#include "tests/x11/XServer.h"

namespace {

struct Screen {
    const char* name;
    int depth;
    const char* options;
    int tolerance;  // of a colour's parts
};

void PrintTo(const Screen& screen, std::ostream* out) {
    *out << screen.name;
}

constexpr Screen kDepth24 = {"Depth24", 24, "", 0};
constexpr Screen kScreens[] = {
    kDepth24,
    {"Depth24WithoutSharedMemory", 24, "-extension MIT-SHM", 0},
    {"Depth16", 16, "", 8},
    {"Depth15", 15, "", 8},
    {"Depth8", 8, "", 32},
    {"Depth8WithoutSharedMemory", 8, "-extension MIT-SHM", 32},
};

struct Sample {
    COLORREF color;
    ScreenColor seen;
};

constexpr Sample kSamples[] = {
    {RGB(255, 0, 0), {255, 0, 0}},         {RGB(0, 255, 0), {0, 255, 0}},         {RGB(0, 0, 255), {0, 0, 255}},
    {RGB(128, 128, 128), {128, 128, 128}}, {RGB(255, 255, 255), {255, 255, 255}}, {RGB(0, 0, 0), {0, 0, 0}},
    {RGB(200, 100, 50), {200, 100, 50}},
};
constexpr int kSquare = 20;
const ScreenColor kRed = {255, 0, 0};
const ScreenColor kGreen = {0, 255, 0};
const ScreenColor kWhite = {255, 255, 255};

// One server for each kind of screen serves all tests.
XServer& ServerOf(const Screen& screen) {
    static std::map<std::string, std::unique_ptr<XServer>> servers;
    std::unique_ptr<XServer>& server = servers[screen.name];
    if (!server) server = std::make_unique<XServer>(screen.depth, screen.options);
    return *server;
}

class X11WindowTest : public testing::TestWithParam<Screen> {
protected:
    void SetUp() override { Start(GetParam()); }

    void Start(const Screen& screen) {
        if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
        XServer& server = ServerOf(screen);
        ASSERT_TRUE(server.Running());
        server.Use();
        host_ = std::make_unique<ForeignClient>(server.Name());
    }

    void ExpectColor(int x, int y, const ScreenColor& color, int tolerance) {
        const ScreenColor seen = host_->WaitForColor(x, y, color, tolerance);
        EXPECT_LE(seen.DistanceTo(color), tolerance)
            << "at " << x << ',' << y << " is " << seen.red << ',' << seen.green << ',' << seen.blue << " instead of "
            << color.red << ',' << color.green << ',' << color.blue;
    }

    // What was asked of the server before has been done when it shows what is drawn now.
    void WaitUntilShown(AppWindow& window, int x, int y) {
        RECT client;
        GetClientRect(window.Handle(), &client);
        for (const COLORREF color : {RGB(255, 0, 0), RGB(0, 255, 0)}) {
            window.Fill(client, color);
            ExpectColor(x, y, {GetRValue(color), GetGValue(color), GetBValue(color)}, 0);
        }
    }

    std::unique_ptr<ForeignClient> host_;
};

// On the plainest screen only.
class X11Test : public X11WindowTest {
protected:
    void SetUp() override { Start(kDepth24); }
};

INSTANTIATE_TEST_SUITE_P(Screens, X11WindowTest, testing::ValuesIn(kScreens),
                         [](const auto& test) { return std::string(test.param.name); });

RECT SquareAt(int column, int row) {
    return {column * kSquare, row * kSquare, (column + 1) * kSquare, (row + 1) * kSquare};
}

TEST_P(X11WindowTest, ShowsColorsInsideAForeignWindow) {
    const xcb_window_t parent = host_->MakeWindow(100, 50, 300, 200);
    AppWindow window(parent, 10, 20, 200, 100);
    ASSERT_NE(window.Handle(), nullptr);
    EXPECT_STREQ(TdkpDisplayName(), "x11");
    EXPECT_EQ(host_->ChildrenOf(parent), std::vector<xcb_window_t>{window.Id()});

    // One row filled, one row copied from a bitmap.
    const HDC dc = GetDC(window.Handle());
    const HDC memory = CreateCompatibleDC(dc);
    const HBITMAP bitmap = CreateCompatibleBitmap(dc, 200, kSquare);
    const HGDIOBJ former = SelectObject(memory, bitmap);
    int column = 0;
    for (const Sample& sample : kSamples) {
        window.Fill(SquareAt(column, 0), sample.color);
        const RECT square = SquareAt(column++, 0);
        const HBRUSH brush = CreateSolidBrush(sample.color);
        FillRect(memory, &square, brush);
        DeleteObject(brush);
    }
    BitBlt(dc, 0, kSquare, column * kSquare, kSquare, memory, 0, 0, SRCCOPY);
    SelectObject(memory, former);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(window.Handle(), dc);

    const int tolerance = GetParam().tolerance;
    column = 0;
    for (const Sample& sample : kSamples) {
        SCOPED_TRACE(column);
        ExpectColor(110 + column * kSquare + 1, 70 + 1, sample.seen, tolerance);
        ExpectColor(110 + column * kSquare + kSquare - 1, 70 + 2 * kSquare - 1, sample.seen, tolerance);
        ++column;
    }
    ExpectColor(105, 60, kWhite, 0);  // the host's own
    host_->Destroy(parent);
}

TEST_P(X11WindowTest, PictureSurvivesBeingCoveredWithoutItsOwner) {
    const xcb_window_t parent = host_->MakeWindow(0, 0, XServer::kWidth, XServer::kHeight);
    AppWindow window(parent, 0, 0, XServer::kWidth, XServer::kHeight);
    // Larger than one request without shared memory.
    window.Fill({0, 0, XServer::kWidth, XServer::kHeight}, RGB(255, 0, 0));
    window.Fill({501, 403, 601, 503}, RGB(0, 255, 0));
    AppWindow::ServeUntil([&] { return window.Told(WM_PAINT) > 0; });
    const int painted = window.Told(WM_PAINT);
    ExpectColor(799, 599, kRed, 0);

    const xcb_window_t cover = host_->MakeWindow(450, 350, 300, 200);
    ExpectColor(460, 360, kWhite, 0);
    host_->Hide(cover);
    for (const auto& [x, y, color] : {std::tuple{460, 360, kRed},
                                      {500, 403, kRed},
                                      {501, 403, kGreen},
                                      {600, 502, kGreen},
                                      {601, 502, kRed},
                                      {749, 549, kRed}})
        ExpectColor(x, y, color, 0);
    EXPECT_EQ(window.Told(WM_PAINT), painted);
    host_->Destroy(cover);
    host_->Destroy(parent);
}

TEST_P(X11WindowTest, TwoThreadsDrawAtOnce) {
    constexpr int kRounds = 50;
    const xcb_window_t parent = host_->MakeWindow(0, 0, 400, 200);
    std::atomic<int> ready{0};
    const auto draw = [&](int x, COLORREF last) {
        AppWindow window(parent, x, 0, 200, 200);
        for (int round = 0; round < kRounds; ++round) window.Fill({0, 0, 200, 200}, RGB(0, 0, round));
        window.Fill({0, 0, 200, 200}, last);
        ++ready;
        AppWindow::ServeUntil([&] { return ready < 0; });
    };
    std::thread left(draw, 0, RGB(255, 0, 0));
    std::thread right(draw, 200, RGB(0, 255, 0));
    while (ready < 2) Sleep(1);
    ExpectColor(199, 199, kRed, 0);
    ExpectColor(200, 0, kGreen, 0);
    ready = -1;
    left.join();
    right.join();
    EXPECT_TRUE(host_->ChildrenOf(parent).empty());
    host_->Destroy(parent);
}

TEST_F(X11Test, TopLevelTellsTheManagerAndIsClosedByIt) {
    AppWindow window(0, 50, 60, 100, 80, "A title");
    const std::string name(AppWindow::kClassName);
    const std::string zero(1, '\0');
    EXPECT_EQ(host_->TextProperty(window.Id(), "WM_CLASS"), name + zero + name + zero);
    EXPECT_EQ(host_->TextProperty(window.Id(), "WM_NAME"), "A title");
    EXPECT_EQ(host_->TextProperty(window.Id(), "_NET_WM_NAME"), "A title");
    SetWindowTextA(window.Handle(),
                   "Gr\xC3\xBC\xC3\x9F"
                   "e");
    host_->AskToClose(window.Id());
    EXPECT_TRUE(window.ServeUntilTold(WM_CLOSE));
    EXPECT_EQ(host_->TextProperty(window.Id(), "_NET_WM_NAME"),
              "Gr\xC3\xBC\xC3\x9F"
              "e");
}

TEST_F(X11Test, FullScreenAndOnTopAreTheManagersBusiness) {
    AppWindow window(0, 50, 60, 100, 80);
    WaitUntilShown(window, 50, 60);
    const auto place = [&](HWND after, int x, int y, int width, int height) {
        SetWindowPos(window.Handle(), after, x, y, width, height, 0);
    };
    // Without one the window goes there by itself.
    place(HWND_TOP, 0, 0, XServer::kWidth, XServer::kHeight);
    WaitUntilShown(window, XServer::kWidth - 1, XServer::kHeight - 1);
    place(HWND_TOP, 50, 60, 100, 80);
    WaitUntilShown(window, 149, 139);
    EXPECT_NE(host_->ColorAt(150, 140).DistanceTo(kGreen), 0);

    host_->PretendToManage();
    place(HWND_TOP, 0, 0, XServer::kWidth, XServer::kHeight);
    EXPECT_EQ(host_->WaitForStateRequest(), "+_NET_WM_STATE_FULLSCREEN");
    place(HWND_TOP, 50, 60, 100, 80);
    EXPECT_EQ(host_->WaitForStateRequest(), "-_NET_WM_STATE_FULLSCREEN");
    place(HWND_TOPMOST, 50, 60, 100, 80);
    EXPECT_EQ(host_->WaitForStateRequest(), "+_NET_WM_STATE_ABOVE");
    const auto isTopmost = [&] { return (GetWindowLongA(window.Handle(), GWL_EXSTYLE) & LONG{WS_EX_TOPMOST}) != 0; };
    EXPECT_TRUE(isTopmost());
    place(HWND_NOTOPMOST, 50, 60, 100, 80);
    EXPECT_EQ(host_->WaitForStateRequest(), "-_NET_WM_STATE_ABOVE");
    EXPECT_FALSE(isTopmost());
}

TEST_F(X11Test, TellsThatTheManagerMadeAnIconOfIt) {
    AppWindow window(0, 50, 60, 100, 80);
    WaitUntilShown(window, 50, 60);
    const auto isSized = [&](WPARAM kind) {
        return AppWindow::ServeUntil([&] { return window.Last(WM_SIZE).wParam == kind; });
    };
    host_->Hide(window.Id());
    EXPECT_TRUE(isSized(SIZE_MINIMIZED));
    host_->Unhide(window.Id());
    EXPECT_TRUE(isSized(SIZE_RESTORED));
    EXPECT_EQ(LOWORD(window.Last(WM_SIZE).lParam), 100);
    // Who hides a window by itself is told nothing of the kind.
    ShowWindow(window.Handle(), SW_HIDE);
    ShowWindow(window.Handle(), SW_SHOW);
    WaitUntilShown(window, 50, 60);
    EXPECT_EQ(window.Last(WM_SIZE).wParam, static_cast<WPARAM>(SIZE_RESTORED));
}

TEST_F(X11Test, GoesWithItsForeignParent) {
    const xcb_window_t parent = host_->MakeWindow(0, 0, 300, 200);
    {
        AppWindow window(parent, 0, 0, 100, 100);
        AppWindow inner(window.Id(), 10, 10, 50, 50);
        window.Fill({0, 0, 100, 100}, RGB(255, 0, 0));
        host_->Destroy(parent);
        window.Fill({0, 0, 100, 100}, RGB(0, 255, 0));
        EXPECT_TRUE(AppWindow::ServeUntil([&] { return window.Handle() == nullptr && inner.Handle() == nullptr; }));
        EXPECT_EQ(window.Told(WM_DESTROY), 1);
        EXPECT_EQ(inner.Told(WM_DESTROY), 1);
    }
    EXPECT_EQ(AppWindow(parent, 0, 0, 10, 10).Handle(), nullptr);
    EXPECT_NE(AppWindow(host_->MakeWindow(0, 0, 20, 20), 0, 0, 10, 10).Handle(), nullptr);
}

TEST_F(X11Test, MouseComesInClientCoordinates) {
    const xcb_window_t parent = host_->MakeWindow(30, 40, 300, 200);
    AppWindow window(parent, 11, 13, 200, 100);
    WaitUntilShown(window, 41, 53);
    host_->MoveMouse(30 + 11 + 57, 40 + 13 + 29);
    host_->Button(1, true);
    host_->MoveMouse(30 + 11 + 60, 40 + 13 + 30);
    host_->Button(1, false);
    host_->Button(3, true);
    host_->Button(3, false);
    ASSERT_TRUE(window.ServeUntilTold(WM_RBUTTONUP));
    const struct {
        UINT message;
        WPARAM keys;
        LPARAM point;
    } expected[] = {
        {WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(57, 29)},
        {WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(60, 30)},
        {WM_LBUTTONUP, 0, MAKELPARAM(60, 30)},
        {WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(60, 30)},
        {WM_RBUTTONUP, 0, MAKELPARAM(60, 30)},
    };
    for (const auto& each : expected) {
        SCOPED_TRACE(each.message);
        EXPECT_EQ(window.Last(each.message).wParam, each.keys);
        EXPECT_EQ(window.Last(each.message).lParam, each.point);
    }
    POINT pointer;
    GetCursorPos(&pointer);
    EXPECT_EQ(pointer.x, 30 + 11 + 60);
    EXPECT_EQ(pointer.y, 40 + 13 + 30);
    host_->Destroy(parent);
}

TEST_F(X11Test, KeysHaveTheirNumbersAndCharacters) {
    constexpr uint32_t kReturn = 0xFF0D, kLeft = 0xFF51, kShift = 0xFFE1, kF5 = 0xFFC2, kControl = 0xFFE3,
                       kDelete = 0xFFFF, kEscape = 0xFF1B, kTab = 0xFF09;
    const struct {
        uint32_t modifier, keysym;
        WPARAM virtualKey, character;  // 0: none comes
    } keys[] = {
        {0, 'a', 'A', 'a'},
        {kShift, 'a', 'A', 'A'},
        {0, '7', '7', '7'},
        {kShift, '7', '7', '&'},
        {0, ' ', VK_SPACE, ' '},
        {0, kReturn, VK_RETURN, '\r'},
        {0, kLeft, VK_LEFT, 0},
        {0, kF5, VK_F5, 0},
        {kControl, 'c', 'C', 3},
        {0, kDelete, VK_DELETE, 0},
        {0, kEscape, VK_ESCAPE, 0x1B},
        {0, kTab, VK_TAB, '\t'},
        {0, '-', VK_OEM_MINUS, '-'},
        {kShift, '=', VK_OEM_PLUS, '+'},
    };
    const xcb_window_t parent = host_->MakeWindow(0, 0, 300, 200);
    host_->MoveMouse(20, 20);
    for (const auto& key : keys) {
        SCOPED_TRACE(key.keysym);
        AppWindow window(parent, 0, 0, 200, 100);
        SetFocus(window.Handle());
        WaitUntilShown(window, 0, 0);
        const auto press = [&](uint32_t keysym, bool down) {
            if (keysym != 0) host_->Key(keysym, down);
        };
        const auto released = [&] { return window.Last(WM_KEYUP).wParam == key.virtualKey; };
        press(key.modifier, true);
        press(key.keysym, true);
        press(key.keysym, false);
        EXPECT_TRUE(AppWindow::ServeUntil(released));
        press(key.modifier, false);
        EXPECT_EQ(window.Last(WM_KEYDOWN).wParam, key.virtualKey);
        EXPECT_EQ(window.Told(WM_CHAR), key.character != 0 ? 1 : 0);
        EXPECT_EQ(window.Last(WM_CHAR).wParam, key.character);
    }
    host_->Destroy(parent);
}

TEST_F(X11Test, TakesAPrivateColormapWhereNoColorsAreFree) {
    // That extension keeps colours of its own in the default colormap, for everybody to share.
    XServer server(8, "-extension RENDER");
    ASSERT_TRUE(server.Running());
    server.Use();
    ForeignClient host(server.Name());
    host.ExhaustColors();
    AppWindow window(host.MakeWindow(0, 0, 200, 100), 0, 0, 200, 100);
    ASSERT_NE(window.Handle(), nullptr);
    EXPECT_NE(host.ColormapOf(window.Id()), host.ColormapOf(host.Root()));
    constexpr int kTolerance = 26;
    for (const Sample& sample : kSamples) {
        window.Fill({0, 0, 200, 100}, sample.color);
        EXPECT_LE(host.ColorAt(50, 50, host.ColormapOf(window.Id())).DistanceTo(sample.seen), kTolerance);
    }
}

TEST_F(X11Test, OutlivesItsServer) {
    XServer server(24);
    ASSERT_TRUE(server.Running());
    server.Use();
    {
        AppWindow window(0, 0, 0, 100, 100);
        server.Kill();
        window.Fill({0, 0, 100, 100}, RGB(255, 0, 0));
        EXPECT_TRUE(AppWindow::ServeUntil([&] { return window.Handle() == nullptr; }));
    }
    setenv("DISPLAY", ":9999", 1);  // the number may be another server's by now
    AppWindow next(0, 0, 0, 100, 100);
    EXPECT_NE(next.Handle(), nullptr);
    EXPECT_STREQ(TdkpDisplayName(), "memory");
}

}  // namespace
