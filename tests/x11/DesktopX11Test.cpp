// What comes from a person's mouse and keys, and from other programs, on a real server: open menus, dropped files, the
// pointer outside, and the screen saver.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

#include "tests/support/MenuScript.h"
#include "tests/x11/AppWindow.h"
#include "tests/x11/DropSource.h"
#include "tests/x11/ForeignClient.h"
#include "tests/x11/XServer.h"

namespace {

using tdkviz::test::WaitUntil;

class X11Desktop : public testing::Test {
protected:
    void SetUp() override {
        if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
        static XServer server(24);
        ASSERT_TRUE(server.Running());
        server.Use();
        name_ = server.Name();
        person_ = std::make_unique<ForeignClient>(name_);
        person_->MoveMouse(XServer::kWidth - 1, XServer::kHeight - 1);
    }

    std::string name_;
    std::unique_ptr<ForeignClient> person_;
};

// ---- Menus ----

constexpr UINT kFirst = 1, kInner = 2;

class X11Menu : public X11Desktop {
protected:
    using Step = tdkviz::test::MenuStep;

    void SetUp() override {
        X11Desktop::SetUp();
        if (IsSkipped()) return;
        window_ = std::make_unique<AppWindow>(0, 50, 60, 300, 200);
        AppWindow::ServeUntil([&] { return window_->Told(WM_PAINT) > 0; });
        AppendMenuA(menu_, MF_STRING, kFirst, "First");
        AppendMenuA(menu_, MF_POPUP, reinterpret_cast<UINT_PTR>(more_), "More");
        AppendMenuA(more_, MF_STRING, kInner, "Inner");
    }
    void TearDown() override { DestroyMenu(menu_); }

    UINT Track(std::deque<Step> script) {
        return static_cast<UINT>(tdkviz::test::TrackMenu(menu_, TPM_RETURNCMD | TPM_RIGHTBUTTON, {120, 100},
                                                         window_->Handle(), std::move(script)));
    }
    static POINT MiddleOf(HMENU menu, UINT item) {
        RECT place = {-1, -1, -1, -1};
        GetMenuItemRect(nullptr, menu, item, &place);
        return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    }
    Step MoveTo(HMENU menu, UINT item) {
        return [=, this] {
            const POINT point = MiddleOf(menu, item);
            if (point.x >= 0) person_->MoveMouse(point.x, point.y);
            return point.x >= 0;
        };
    }
    Step Button(int number, bool down) {
        return [=, this] { return person_->Button(number, down), true; };
    }
    // The menu has mouse and keyboard when it shows what the mouse is over.
    Step UntilSelected(HMENU menu, UINT item) {
        return [=, this] {
            RECT place;
            if (!GetMenuItemRect(nullptr, menu, item, &place)) return false;
            return person_->ColorAt(place.left + 2, place.top + 2).DistanceTo({0, 0, 128}) == 0;
        };
    }

    const HMENU menu_ = CreatePopupMenu();
    const HMENU more_ = CreatePopupMenu();
    std::unique_ptr<AppWindow> window_;
};

TEST_F(X11Menu, IsChosenFromWithTheMouse) {
    const xcb_window_t focus = person_->Focus();
    const UINT chosen = Track({MoveTo(menu_, 1), UntilSelected(menu_, 1), MoveTo(more_, 0), UntilSelected(more_, 0),
                               [&] {
                                   EXPECT_EQ(person_->Focus(), focus);
                                   // Above the window that it belongs to, and no manager's business.
                                   const HWND open = FindWindowExA(nullptr, nullptr, "#32768", nullptr);
                                   const auto stack = person_->ChildrenOf(person_->Root());
                                   const auto id = static_cast<xcb_window_t>(reinterpret_cast<uintptr_t>(open));
                                   EXPECT_LT(std::find(stack.begin(), stack.end(), window_->Id()),
                                             std::find(stack.begin(), stack.end(), id));
                                   return true;
                               },
                               Button(1, true), Button(1, false)});
    EXPECT_EQ(chosen, kInner);
}

TEST_F(X11Menu, AClickAnywhereClosesItAndIsForNobodyElse) {
    // A child of another thread, as the add-on's picture is one.
    std::atomic<bool> made{false}, ending{false};
    std::atomic<int> clicks{0};
    std::thread other([&] {
        AppWindow child(window_->Id(), 0, 0, 40, 40);
        made = true;
        AppWindow::ServeUntil([&] { return ending.load(); });
        clicks = child.Told(WM_LBUTTONDOWN) + child.Told(WM_LBUTTONUP);
    });
    AppWindow::ServeUntil([&] { return made.load(); });
    const xcb_window_t foreign = person_->MakeWindow(500, 400, 50, 50);
    for (const POINT place : {POINT{55, 65}, POINT{510, 410}, POINT{700, 30}}) {
        SCOPED_TRACE(place.x);
        EXPECT_EQ(
            Track({MoveTo(menu_, 0), UntilSelected(menu_, 0),
                   [&] { return person_->MoveMouse(place.x, place.y), true; }, Button(1, true), Button(1, false)}),
            0u);
    }
    ending = true;
    other.join();
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(window_->Told(WM_LBUTTONDOWN), 0);
    person_->Destroy(foreign);
}

TEST_F(X11Menu, HasTheKeysWhoeverHasTheFocus) {
    constexpr uint32_t kDown = 0xFF54, kReturn = 0xFF0D, kEscape = 0xFF1B;
    const auto press = [&](uint32_t keysym) {
        return [=, this] { return person_->Key(keysym, true), person_->Key(keysym, false), true; };
    };
    person_->MoveMouse(XServer::kWidth - 1, 0);
    EXPECT_EQ(Track({MoveTo(menu_, 1), UntilSelected(menu_, 1), press(kDown), press(kReturn)}), kFirst);
    EXPECT_EQ(Track({MoveTo(menu_, 0), UntilSelected(menu_, 0), press(kEscape)}), 0u);
    EXPECT_EQ(window_->Told(WM_KEYDOWN), 0);
}

// ---- The pointer ----

TEST_F(X11Desktop, KnowsThePointerOutsideOfItsWindows) {
    AppWindow window(0, 50, 60, 100, 80);
    ASSERT_TRUE(AppWindow::ServeUntil([&] { return window.Told(WM_PAINT) > 0; }));
    const xcb_window_t foreign = person_->MakeWindow(300, 60, 100, 80);
    person_->MoveMouse(70, 75);
    ASSERT_TRUE(window.ServeUntilTold(WM_MOUSEMOVE));
    TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, window.Handle(), 0};
    ASSERT_TRUE(TrackMouseEvent(&track));
    person_->MoveMouse(310, 75);
    EXPECT_TRUE(window.ServeUntilTold(WM_MOUSELEAVE));
    POINT place;
    GetCursorPos(&place);
    EXPECT_EQ(place.x, 310);
    EXPECT_EQ(place.y, 75);

    // While a button is held down the window keeps the mouse.
    person_->MoveMouse(71, 75);
    ASSERT_TRUE(AppWindow::ServeUntil([&] { return window.Last(WM_MOUSEMOVE).lParam == MAKELPARAM(21, 15); }));
    ASSERT_TRUE(TrackMouseEvent(&track));
    person_->Button(1, true);
    person_->MoveMouse(311, 75);
    ASSERT_TRUE(AppWindow::ServeUntil([&] { return window.Last(WM_MOUSEMOVE).lParam == MAKELPARAM(261, 15); }));
    EXPECT_EQ(window.Told(WM_MOUSELEAVE), 1);
    person_->Button(1, false);
    EXPECT_TRUE(AppWindow::ServeUntil([&] { return window.Told(WM_MOUSELEAVE) == 2; }));
    person_->Destroy(foreign);
}

// ---- Dropped files ----

// The window serves no message until all is over: nobody waits for it.
TEST_F(X11Desktop, TakesDroppedFilesOfThisMachine) {
    AppWindow window(0, 50, 60, 200, 100);
    AppWindow child(window.Id(), 20, 10, 60, 40);
    ASSERT_TRUE(AppWindow::ServeUntil([&] { return window.Told(WM_PAINT) > 0 && child.Told(WM_PAINT) > 0; }));
    EXPECT_EQ(person_->NumberProperty(window.Id(), "XdndAware"), 5u);
    DropSource source(name_, window.Id());
    source.Enter({"text/uri-list"});
    EXPECT_FALSE(source.Position(80, 80));
    DragAcceptFiles(window.Handle(), TRUE);
    EXPECT_TRUE(source.Position(80, 80));
    source.Leave();
    source.Enter({"text/plain", "UTF8_STRING"});
    EXPECT_FALSE(source.Position(80, 80));
    EXPECT_FALSE(source.Drop("file:///no"));
    source.Enter({"text/plain", "UTF8_STRING", "TEXT", "text/uri-list"});
    EXPECT_TRUE(source.Position(80, 80));
    EXPECT_FALSE(source.Drop("file:///no", "INCR"));
    source.Enter({"text/uri-list"});
    EXPECT_TRUE(source.Position(80, 80));
    EXPECT_FALSE(source.Drop("http://example.org/no\r\nfile://elsewhere.invalid/no\r\nfile:///bad%2\r\n"));
    source.Enter({"text/uri-list"});
    EXPECT_TRUE(source.Position(80, 80));
    EXPECT_TRUE(
        source.Drop("# two\r\nfile:///music/a%20%23%25b.ogg\r\nhttp://example.org/\r\nfile://localhost/Gr%C3%BCn\r\n"));

    ASSERT_TRUE(window.ServeUntilTold(WM_DROPFILES));
    EXPECT_EQ(window.Told(WM_DROPFILES), 1);
    EXPECT_EQ(child.Told(WM_DROPFILES), 0);
    const auto drop = reinterpret_cast<HDROP>(window.Last(WM_DROPFILES).wParam);
    char path[64];
    EXPECT_EQ(DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0), 2u);
    DragQueryFileA(drop, 0, path, sizeof(path));
    EXPECT_STREQ(path, "/music/a #%b.ogg");
    DragQueryFileA(drop, 1, path, sizeof(path));
    EXPECT_STREQ(path, "/Gr\xC3\xBCn");
    DragFinish(drop);
}

// ---- The screen saver ----

TEST_F(X11Desktop, HoldsTheScreenSaverOffWhileAThreadAsks) {
    XServer server(24);
    ASSERT_TRUE(server.Running());
    server.Use();
    ForeignClient client(server.Name());
    client.UseScreenSaver(1);
    const auto isOn = [&] { return client.IsScreenSaverOn(); };
    if (!WaitUntil(isOn)) GTEST_SKIP() << "the server has no screen saver";

    // Asked for before there is a window.
    SetThreadExecutionState(ES_CONTINUOUS | ES_DISPLAY_REQUIRED);
    AppWindow window(0, 0, 0, 100, 100);
    client.MoveMouse(5, 5);  // wakes it up
    EXPECT_TRUE(WaitUntil([&] { return !isOn(); }));
    constexpr DWORD kLongerThanItWaits = 2500;
    Sleep(kLongerThanItWaits);
    EXPECT_FALSE(isOn());

    // Another thread's wish ends with the thread.
    std::thread([] { SetThreadExecutionState(ES_CONTINUOUS | ES_DISPLAY_REQUIRED); }).join();
    SetThreadExecutionState(ES_CONTINUOUS);
    EXPECT_TRUE(WaitUntil(isOn));
}

}  // namespace
