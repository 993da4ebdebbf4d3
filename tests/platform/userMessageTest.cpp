// Message queues: order, ranges, waits, and messages sent across threads.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>

#include "tests/platform/userSupport.h"

using namespace usertest;

TEST(UserMessages, PostedMessagesComeInOrderAndRangesPickAmongThem) {
    MakeQueue();
    const DWORD self = GetCurrentThreadId();
    for (const UINT number : {WM_USER + 3, WM_USER + 1, WM_USER + 2, WM_USER + 1})
        ASSERT_TRUE(PostThreadMessageA(self, number, number * 2, -1));
    MSG message;
    EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_USER + 1, WM_USER + 2, PM_NOREMOVE));
    EXPECT_EQ(message.message, UINT{WM_USER + 1});
    EXPECT_FALSE(PeekMessageA(&message, nullptr, WM_USER + 4, WM_USER + 9, PM_REMOVE));
    std::vector<UINT> order;
    while (PeekMessageA(&message, nullptr, WM_USER + 1, WM_USER + 2, PM_REMOVE)) order.push_back(message.message);
    EXPECT_EQ(order, (std::vector<UINT>{WM_USER + 1, WM_USER + 2, WM_USER + 1}));
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_USER + 3});
    EXPECT_EQ(message.wParam, WPARAM{(WM_USER + 3) * 2});
    EXPECT_EQ(message.lParam, LPARAM{-1});
    EXPECT_EQ(message.hwnd, nullptr);
}

TEST(UserMessages, QuitComesAfterPostedMessagesAndOnce) {
    MakeQueue();
    PostQuitMessage(7);
    PostThreadMessageA(GetCurrentThreadId(), WM_USER, 0, 0);
    MSG message;
    ASSERT_TRUE(GetMessageA(&message, nullptr, 0, 0));
    EXPECT_EQ(message.message, UINT{WM_USER});
    EXPECT_FALSE(GetMessageA(&message, nullptr, 0, 0));
    EXPECT_EQ(message.message, UINT{WM_QUIT});
    EXPECT_EQ(message.wParam, WPARAM{7});
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST(UserMessages, PaintComesLastAndMerged) {
    TestClass windows;
    int paints = 0;
    RECT painted = {};
    windows.handler = [&](HWND window, UINT message, WPARAM, LPARAM, LRESULT*) {
        if (message != WM_PAINT) return false;
        PAINTSTRUCT paint;
        BeginPaint(window, &paint);
        painted = paint.rcPaint;
        ++paints;
        EndPaint(window, &paint);
        return true;
    };
    const HWND window = windows.Make(WS_POPUP | WS_VISIBLE);
    ServeMessages();
    paints = 0;
    const RECT first = {1, 2, 5, 6};
    const RECT second = {10, 1, 12, 3};
    InvalidateRect(window, &first, FALSE);
    InvalidateRect(window, &second, FALSE);
    PostMessageA(window, WM_USER, 0, 0);
    MSG message;
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(message.message, UINT{WM_USER});
    std::vector<UINT> order;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        order.push_back(message.message);
        DispatchMessageA(&message);
    }
    EXPECT_EQ(order, (std::vector<UINT>{WM_USER, WM_PAINT}));
    EXPECT_EQ(paints, 1);
    EXPECT_EQ((std::vector{painted.left, painted.top, painted.right, painted.bottom}),
              (std::vector<LONG>{1, 1, 12, 6}));
    DestroyWindow(window);
}

TEST(UserMessages, MsgWaitWakesForNewInputOnly) {
    MakeQueue();
    const DWORD self = GetCurrentThreadId();
    const auto wait = [](DWORD mask) { return MsgWaitForMultipleObjects(0, nullptr, FALSE, 0, mask); };
    EXPECT_EQ(wait(0x4FF), DWORD{WAIT_TIMEOUT});
    PostThreadMessageA(self, WM_USER, 0, 0);
    EXPECT_EQ(wait(QS_KEY), DWORD{WAIT_TIMEOUT});
    EXPECT_EQ(wait(0x4FF), DWORD{WAIT_OBJECT_0});
    MSG message;
    PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);
    EXPECT_EQ(wait(0x4FF), DWORD{WAIT_TIMEOUT}) << "the message has been seen";
    PostThreadMessageA(self, WM_USER, 0, 0);
    EXPECT_EQ(wait(0x4FF), DWORD{WAIT_OBJECT_0});
    ServeMessages();
    EXPECT_EQ(wait(0x4FF), DWORD{WAIT_TIMEOUT});
}

TEST(UserMessages, ASentMessageIsServedInEachKindOfWaitAndOnTheReceiversThread) {
    enum Kind { kGet, kPeek, kMsgWait };
    for (const Kind kind : {kGet, kPeek, kMsgWait}) {
        TestClass windows;
        std::atomic<DWORD> ranOn{0};
        windows.handler = [&](HWND, UINT message, WPARAM wParam, LPARAM, LRESULT* result) {
            if (message == WM_USER) {
                ranOn = GetCurrentThreadId();
                *result = static_cast<LRESULT>(wParam) + 1;
            }
            return message == WM_USER;
        };
        TestEvent made, stop;
        std::atomic<HWND> window{nullptr};
        TestThread thread([&] {
            window = windows.Make();
            made.Set();
            const HANDLE end = stop.Handle();
            MSG message;
            if (kind == kGet) Loop();
            while (kind == kPeek && !stop.Await(1)) PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
            while (kind == kMsgWait && MsgWaitForMultipleObjects(1, &end, FALSE, INFINITE, 0x4FF) != WAIT_OBJECT_0)
                ServeMessages();
            DestroyWindow(window);
        });
        ASSERT_TRUE(made.Await());
        EXPECT_EQ(SendMessageA(window, WM_USER, 41, 0), 42) << kind;
        EXPECT_EQ(ranOn, thread.Id());
        kind == kGet ? void(PostThreadMessageA(thread.Id(), WM_QUIT, 0, 0)) : stop.Set();
    }
}

TEST(UserMessages, CrossedSendsDoNotLock) {
    constexpr int kRounds = 500;
    TestClass windows;
    windows.handler = [](HWND, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
        if (message == WM_USER)  // answers by sending back to the sender, a few times
            *result = wParam == 0 ? 1 : 1 + SendMessageA(reinterpret_cast<HWND>(lParam), WM_USER, wParam - 1, lParam);
        return message == WM_USER;
    };
    TestEvent go[2];
    std::atomic<HWND> handles[2] = {nullptr, nullptr};
    const auto work = [&](int self) {
        handles[self] = windows.Make();
        EXPECT_TRUE(go[self].Await());
        for (int i = 0; i < kRounds; ++i) {
            const auto back = reinterpret_cast<LPARAM>(handles[self].load());
            EXPECT_EQ(SendMessageA(handles[1 - self], WM_USER, 3, back), 4);
        }
        PostMessageA(handles[1 - self], WM_APP, 0, 0);
        MSG message;
        while (GetMessageA(&message, nullptr, 0, 0) > 0 && message.message != WM_APP) DispatchMessageA(&message);
        DestroyWindow(handles[self]);
    };
    TestThread first([&] { work(0); });
    TestThread second([&] { work(1); });
    // Each thread is let go when both windows stand.
    while (handles[0] == nullptr || handles[1] == nullptr) Sleep(1);
    go[0].Set();
    go[1].Set();
    first.Join();
    second.Join();
}

TEST(UserMessages, ASendFailsWhenItsReceiverEnds) {
    TestClass windows;
    TestEvent made, end;
    std::atomic<HWND> window{nullptr};
    TestThread receiver([&] {
        window = windows.Make(WS_POPUP, nullptr, 40, 30, "a text, whose length would be told");
        made.Set();
        end.Await();  // never looks for messages
    });
    ASSERT_TRUE(made.Await());
    TestThread sender([&] { EXPECT_EQ(SendMessageA(window, WM_GETTEXTLENGTH, 0, 0), 0); });
    Sleep(20);
    end.Set();
    sender.Join();
    receiver.Join();
    EXPECT_FALSE(IsWindow(window));
    EXPECT_FALSE(PostMessageA(window, WM_USER, 0, 0));
}
