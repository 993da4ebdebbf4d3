// What a window learns of the pointer and of dropped files, on the memory display.
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <windows.h>

#include "tests/platform/userSupport.h"
#include "tests/staged/NothingLeft.h"

using namespace usertest;

namespace {

class UserDesktop : public testing::Test {
protected:
    UserDesktop() {
        SetWindowPos(parent_, HWND_TOP, 100, 50, 200, 100, SWP_NOACTIVATE);
        SetWindowPos(child_, HWND_TOP, 20, 10, 60, 40, SWP_NOACTIVATE);
        ServeMessages();
        class_.Take({});
    }
    ~UserDesktop() override { DestroyWindow(parent_); }

    void Move(int x, int y) { TdkpFeedMouse(parent_, WM_MOUSEMOVE, 0, x, y); }
    static BOOL Track(HWND window) {
        TRACKMOUSEEVENT event = {sizeof(event), TME_LEAVE, window, 0};
        return TrackMouseEvent(&event);
    }
    std::vector<HWND> Left() {
        ServeMessages();
        std::vector<HWND> windows;
        for (const TestClass::Entry& entry : class_.Take({WM_MOUSELEAVE})) windows.push_back(entry.window);
        return windows;
    }

    TestClass class_;
    const HWND parent_ = class_.Make(WS_POPUP | WS_VISIBLE, nullptr, 200, 100);
    const HWND child_ = class_.Make(WS_CHILD | WS_VISIBLE, parent_, 60, 40);
};

TEST_F(UserDesktop, TellsOnceThatThePointerHasLeft) {
    using Windows = std::vector<HWND>;
    Move(5, 5);
    ASSERT_TRUE(Track(parent_));
    Move(6, 5);
    EXPECT_EQ(Left(), Windows());
    Move(30, 20);  // the child's
    EXPECT_EQ(Left(), Windows{parent_});
    Move(5, 5), Move(30, 20);
    EXPECT_EQ(Left(), Windows());
    // Who isn't under the pointer is told at once.
    EXPECT_TRUE(Track(parent_));
    EXPECT_EQ(Left(), Windows{parent_});
    EXPECT_FALSE(Track(nullptr));
}

TEST_F(UserDesktop, DroppedFilesGoToTheNearestWindowThatAcceptsThem) {
    const tdkviz::test::NothingLeft nothingLeft;
    const char* const paths[] = {"/music/one.ogg", "/music/Gr\xC3\xBC n.wav"};
    EXPECT_FALSE(TdkpFeedFiles(parent_, 30, 20, paths, 2));
    DragAcceptFiles(parent_, TRUE);
    EXPECT_TRUE(GetWindowLongA(parent_, GWL_EXSTYLE) & static_cast<LONG>(WS_EX_ACCEPTFILES));
    EXPECT_TRUE(TdkpFeedFiles(parent_, 30, 20, paths, 2));
    ServeMessages();
    std::vector<TestClass::Entry> told = class_.Take({WM_DROPFILES});
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].window, parent_);
    const auto drop = reinterpret_cast<HDROP>(told[0].wParam);
    EXPECT_EQ(DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0), 2u);
    EXPECT_EQ(DragQueryFileA(drop, 1, nullptr, 0), 17u);
    char path[11];
    EXPECT_EQ(DragQueryFileA(drop, 0, path, sizeof(path)), 10u);
    EXPECT_STREQ(path, "/music/one");
    EXPECT_EQ(DragQueryFileA(drop, 2, path, sizeof(path)), 0u);
    DragFinish(drop);
    EXPECT_EQ(DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0), 0u);

    DragAcceptFiles(child_, TRUE);
    EXPECT_TRUE(TdkpFeedFiles(parent_, 30, 20, paths, 1));
    ServeMessages();
    told = class_.Take({WM_DROPFILES});
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].window, child_);
    DragFinish(reinterpret_cast<HDROP>(told[0].wParam));

    // One that waits goes with its window.
    const HWND gone = class_.Make(WS_POPUP | WS_VISIBLE, nullptr, 60, 40);
    DragAcceptFiles(gone, TRUE);
    EXPECT_TRUE(TdkpFeedFiles(gone, 5, 5, paths, 1));
    DestroyWindow(gone);
}

TEST_F(UserDesktop, ExecutionStateIsTheThreadsOwn) {
    constexpr EXECUTION_STATE kAwake = ES_CONTINUOUS | ES_DISPLAY_REQUIRED;
    EXPECT_EQ(SetThreadExecutionState(kAwake), ES_CONTINUOUS);
    EXECUTION_STATE other = 0;
    TestThread([&] { other = SetThreadExecutionState(kAwake | ES_SYSTEM_REQUIRED); }).Join();
    EXPECT_EQ(other, ES_CONTINUOUS);
    EXPECT_EQ(SetThreadExecutionState(0x100), 0u);
    EXPECT_EQ(SetThreadExecutionState(ES_CONTINUOUS), kAwake);
}

}  // namespace
