// Windows: classes, words, the tree, creation and destruction, and who may touch them.
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <windows.h>

#include <atomic>

#include "tests/platform/userSupport.h"

using namespace usertest;

namespace {

using Pairs = std::vector<std::pair<HWND, UINT>>;
Pairs PairsOf(const std::vector<TestClass::Entry>& entries) {
    Pairs pairs;
    for (const TestClass::Entry& entry : entries) pairs.emplace_back(entry.window, entry.message);
    return pairs;
}

WNDPROC replaced = nullptr;

LRESULT CALLBACK KeepPresses(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return message == WM_LBUTTONDOWN ? 7 : CallWindowProcA(replaced, window, message, wParam, lParam);
}

}  // namespace

TEST(UserWindows, CreationAndDestructionSpeakInThePublishedOrder) {
    TestClass windows;
    const HWND parent = windows.Make(WS_POPUP, nullptr, 200, 100);
    const Pairs created = PairsOf(windows.Take({WM_NCCREATE, WM_CREATE, WM_SIZE, WM_MOVE}));
    EXPECT_EQ(created, (Pairs{{parent, WM_NCCREATE}, {parent, WM_CREATE}, {parent, WM_SIZE}, {parent, WM_MOVE}}));
    const HWND child = windows.Make(WS_CHILD, parent);
    const HWND inner = windows.Make(WS_CHILD, child);
    windows.Take({});
    EXPECT_TRUE(DestroyWindow(parent));
    const Pairs ended = PairsOf(windows.Take({WM_DESTROY, WM_NCDESTROY}));
    EXPECT_EQ(ended, (Pairs{{parent, WM_DESTROY},
                            {child, WM_DESTROY},
                            {inner, WM_DESTROY},
                            {inner, WM_NCDESTROY},
                            {child, WM_NCDESTROY},
                            {parent, WM_NCDESTROY}}));
    for (const HWND gone : {parent, child, inner}) {
        EXPECT_FALSE(IsWindow(gone));
        EXPECT_FALSE(DestroyWindow(gone));
        EXPECT_FALSE(ShowWindow(gone, SW_SHOW));
        EXPECT_FALSE(InvalidateRect(gone, nullptr, TRUE));
        EXPECT_EQ(SendMessageA(gone, WM_USER, 0, 0), 0);
        EXPECT_EQ(GetDC(gone), nullptr);
    }
}

TEST(UserWindows, ShowingAnotherThreadsWindowWaitsForThatThread) {
    TestClass windows;
    TestEvent made, serve;
    std::atomic<HWND> window{nullptr};
    std::atomic<bool> serving{false};
    TestThread owner([&] {
        window = windows.Make(WS_POPUP);
        made.Set();
        serve.Await();
        serving = true;
        Loop();
        DestroyWindow(window);
    });
    ASSERT_TRUE(made.Await());
    EXPECT_FALSE(DestroyWindow(window)) << "only its own thread may";
    TestThread shower([&] {
        EXPECT_FALSE(ShowWindow(window, SW_SHOW));
        EXPECT_TRUE(serving) << "came back before the owner looked for messages";
    });
    Sleep(30);
    EXPECT_FALSE(IsWindowVisible(window));
    serve.Set();
    shower.Join();
    EXPECT_TRUE(IsWindowVisible(window));
    const auto shown = windows.Take({WM_SHOWWINDOW});
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].thread, owner.Id());
    PostThreadMessageA(owner.Id(), WM_QUIT, 0, 0);
}

TEST(UserWindows, WindowsGoWithTheirThread) {
    TestClass windows;
    std::atomic<HWND> window{nullptr};
    TestThread([&] { window = windows.Make(WS_POPUP | WS_VISIBLE); }).Join();
    EXPECT_FALSE(IsWindow(window));
    TestEvent made;
    TestThread hung([&] {
        window = windows.Make(WS_POPUP | WS_VISIBLE);
        made.Set();
        for (volatile int spin = 0;;) spin = spin + 1;
    });
    ASSERT_TRUE(made.Await());
    EXPECT_TRUE(IsWindow(window));
    EXPECT_TRUE(TerminateThread(hung.Handle(), 1));
    hung.Join();
    EXPECT_FALSE(IsWindow(window));
}

TEST(UserWindows, CaptureAndFocusFollowTheirWindows) {
    TestClass windows;
    const HWND parent = windows.Make(WS_POPUP | WS_VISIBLE, nullptr, 100, 100);
    const HWND child = windows.Make(WS_CHILD | WS_VISIBLE, parent);
    ServeMessages();
    windows.Take({});
    EXPECT_EQ(SetCapture(child), nullptr);
    EXPECT_EQ(GetCapture(), child);
    EXPECT_EQ(SetCapture(parent), child);
    SetFocus(child);
    EXPECT_EQ(GetFocus(), child);
    const Pairs told = PairsOf(windows.Take({WM_CAPTURECHANGED, WM_KILLFOCUS, WM_SETFOCUS}));
    EXPECT_EQ(told, (Pairs{{child, WM_CAPTURECHANGED}, {parent, WM_KILLFOCUS}, {child, WM_SETFOCUS}}));
    SetCapture(nullptr);
    EXPECT_EQ(GetCapture(), nullptr);
    SetCapture(child);
    DestroyWindow(child);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(GetFocus(), parent);
    DestroyWindow(parent);
    EXPECT_EQ(GetFocus(), nullptr);
}

// The display may be ahead of the thread, as while a dialog opens.
TEST(UserWindows, AKeyIsForTheTopLevelWindowThatTheDisplayGaveItTo) {
    TestClass windows;
    const HWND former = windows.Make(WS_POPUP | WS_VISIBLE, nullptr, 100, 100);
    const HWND next = windows.Make(WS_POPUP | WS_VISIBLE, nullptr, 100, 100);
    SetFocus(former);
    ServeMessages();
    windows.Take({});
    for (const HWND window : {next, former}) TdkpFeedKey(window, TRUE, VK_ESCAPE, 0);
    ServeMessages();
    EXPECT_EQ(GetFocus(), former);
    EXPECT_EQ(PairsOf(windows.Take({WM_KEYDOWN})), (Pairs{{next, WM_KEYDOWN}, {former, WM_KEYDOWN}}));
    for (const HWND window : {next, former}) DestroyWindow(window);
}

TEST(UserWindows, AProcedureThatReplacesAnotherPassesOnWhatItLeaves) {
    TestClass windows;
    const HWND window = windows.Make();
    windows.Take({});
    const LONG_PTR own = reinterpret_cast<LONG_PTR>(KeepPresses);
    replaced = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(window, GWLP_WNDPROC, own));
    EXPECT_EQ(SendMessageA(window, WM_LBUTTONDOWN, 0, 0), 7);
    SendMessageA(window, WM_APP, 0, 0);
    DestroyWindow(window);
    EXPECT_EQ(PairsOf(windows.Take({WM_LBUTTONDOWN, WM_APP, WM_NCDESTROY})),
              (Pairs{{window, WM_APP}, {window, WM_NCDESTROY}}));
}
