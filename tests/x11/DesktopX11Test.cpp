// What comes from a person's mouse and keys, and from other programs, on a real server: open menus, dropped files, the
// pointer outside, and the screen saver.
#include <gtest/gtest.h>
#include <windows.h>
#include <xcb/xcbext.h>

#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <thread>

#include "tests/x11/AppWindow.h"
#include "tests/x11/DropSource.h"
#include "tests/x11/ForeignClient.h"
#include "tests/x11/XServer.h"

namespace {

constexpr auto kTries = 2000;
constexpr DWORD kTryMilliseconds = 10;  // 20 seconds in all

template <typename T>
auto Own(T* reply) {
    return std::unique_ptr<T, decltype(&std::free)>(reply, &std::free);
}

// Asks again and again, without serving messages.
template <typename Condition>
bool Await(Condition condition) {
    for (int attempt = 0; attempt < kTries; ++attempt) {
        if (condition()) return true;
        Sleep(kTryMilliseconds);
    }
    return false;
}

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
    using Step = std::function<bool()>;

    void SetUp() override {
        X11Desktop::SetUp();
        if (IsSkipped()) return;
        current = this;
        window_ = std::make_unique<AppWindow>(0, 50, 60, 300, 200);
        AppWindow::ServeUntil([&] { return window_->Told(WM_PAINT) > 0; });
        AppendMenuA(menu_, MF_STRING, kFirst, "First");
        AppendMenuA(menu_, MF_POPUP, reinterpret_cast<UINT_PTR>(more_), "More");
        AppendMenuA(more_, MF_STRING, kInner, "Inner");
    }
    void TearDown() override { DestroyMenu(menu_); }

    // Each step is tried until it is done.
    UINT Track(std::deque<Step> script) {
        script_ = std::move(script);
        deadline_ = GetTickCount() + kTries * kTryMilliseconds;
        const UINT_PTR timer = SetTimer(nullptr, 0, kTryMilliseconds, OnTimer);
        const BOOL chosen =
            TrackPopupMenu(menu_, TPM_RETURNCMD | TPM_RIGHTBUTTON, 120, 100, 0, window_->Handle(), nullptr);
        KillTimer(nullptr, timer);
        EXPECT_TRUE(script_.empty()) << script_.size() << " steps left";
        return static_cast<UINT>(chosen);
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

private:
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD now) {
        X11Menu& self = *current;
        if (static_cast<int32_t>(now - self.deadline_) > 0) {
            EndMenu();
        } else if (!self.script_.empty()) {
            const Step step = self.script_.front();
            self.script_.pop_front();
            if (!step()) self.script_.push_front(step);
        }
    }

    static inline X11Menu* current = nullptr;
    std::deque<Step> script_;
    DWORD deadline_ = 0;
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

// Of a server of its own, whose saver comes after a second without input.
class Saver {
public:
    explicit Saver(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
        xcb_set_screen_saver(connection_, 1, 0, XCB_BLANKING_PREFERRED, XCB_EXPOSURES_ALLOWED);
        xcb_flush(connection_);
    }
    ~Saver() { xcb_disconnect(connection_); }
    Saver(const Saver&) = delete;
    Saver& operator=(const Saver&) = delete;

    void WakeUp() {
        xcb_force_screen_saver(connection_, XCB_SCREEN_SAVER_RESET);
        xcb_flush(connection_);
    }
    // QueryInfo of the extension MIT-SCREEN-SAVER.
    bool IsOn() {
        static xcb_extension_t extension = {"MIT-SCREEN-SAVER", 0};
        static const xcb_protocol_request_t protocol = {1, &extension, 1, 0};
        struct {
            uint32_t head = 0, drawable = 0;
        } request;
        request.drawable = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        iovec parts[3] = {};
        parts[2] = {&request, sizeof request};
        const unsigned int number = xcb_send_request(connection_, XCB_REQUEST_CHECKED, &parts[2], &protocol);
        xcb_generic_error_t* error = nullptr;
        const auto reply = Own(static_cast<xcb_generic_event_t*>(xcb_wait_for_reply(connection_, number, &error)));
        const auto errorOwner = Own(error);
        return reply && reply->pad0 == 1;  // its state stands where events have their detail
    }

private:
    xcb_connection_t* const connection_;
};

TEST_F(X11Desktop, HoldsTheScreenSaverOffWhileAThreadAsks) {
    XServer server(24);
    ASSERT_TRUE(server.Running());
    server.Use();
    Saver saver(server.Name());
    const auto isOn = [&] { return saver.IsOn(); };
    if (!Await(isOn)) GTEST_SKIP() << "the server has no screen saver";

    // Asked for before there is a window.
    SetThreadExecutionState(ES_CONTINUOUS | ES_DISPLAY_REQUIRED);
    AppWindow window(0, 0, 0, 100, 100);
    saver.WakeUp();
    EXPECT_TRUE(Await([&] { return !saver.IsOn(); }));
    constexpr DWORD kLongerThanItWaits = 2500;
    Sleep(kLongerThanItWaits);
    EXPECT_FALSE(saver.IsOn());

    // Another thread's wish counts too, and ends with the thread.
    std::thread([] { SetThreadExecutionState(ES_CONTINUOUS | ES_DISPLAY_REQUIRED); }).join();
    SetThreadExecutionState(ES_CONTINUOUS);
    EXPECT_TRUE(Await(isOn));
}

}  // namespace
