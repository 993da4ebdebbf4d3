// Popup menus on the memory display: what they hold, and what mouse and keys do to an open one.
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <windows.h>

#include <deque>

#include "tests/platform/userSupport.h"
#include "tests/support/MenuScript.h"
#include "tests/support/Picture.h"

using namespace usertest;

namespace {

constexpr UINT kOpen = 101, kLoud = 102, kQuiet = 103, kInner = 104, kGray = 105, kLast = 106;
constexpr UINT kMoreAt = 4, kInnerAt = 1;

class UserMenu : public testing::Test {
protected:
    using Step = tdkviz::test::MenuStep;

    void SetUp() override {
        window_ = class_.Make(WS_POPUP | WS_VISIBLE, nullptr, 100, 100);
        menu_ = CreatePopupMenu();
        more_ = CreatePopupMenu();
        AppendMenuA(more_, MF_STRING | MF_GRAYED, kGray, "&Gray");
        AppendMenuA(more_, MF_STRING, kInner, "&Inner\tCtrl+I");
        AppendMenuA(menu_, MF_STRING, kOpen, "&Open...\tO");
        AppendMenuA(menu_, MF_SEPARATOR, 0, nullptr);
        AppendMenuA(menu_, MF_STRING | MF_CHECKED, kLoud, "Loud");
        AppendMenuA(menu_, MF_STRING, kQuiet, "Quiet");
        AppendMenuA(menu_, MF_POPUP, reinterpret_cast<UINT_PTR>(more_), "&More");
        AppendMenuA(menu_, MF_STRING, kLast, "Lo&w");
    }
    void TearDown() override {
        if (IsMenu(menu_)) DestroyMenu(menu_);
        if (IsWindow(window_)) DestroyWindow(window_);
        ServeMessages();
        const TdkpCounts after = tdkviz::test::Counts();
        EXPECT_EQ(after.handles, before_.handles);
        EXPECT_EQ(after.windows, before_.windows);
        EXPECT_FALSE(IsMenu(more_));
    }

    BOOL Track(std::deque<Step> script, UINT flags = TPM_RETURNCMD | TPM_RIGHTBUTTON, POINT at = {200, 100}) {
        const BOOL result = tdkviz::test::TrackMenu(menu_, flags, at, window_, std::move(script));
        EXPECT_EQ(FindWindowExA(nullptr, nullptr, "#32768", nullptr), nullptr);
        return result;
    }

    // Steps.
    Step Key(UINT key, UINT character = 0) {
        return [=, this] {
            TdkpFeedKey(window_, TRUE, key, character);
            TdkpFeedKey(window_, FALSE, key, 0);
            return true;
        };
    }
    Step MoveTo(HMENU menu, UINT item) {
        return [=, this] { return Mouse(WM_MOUSEMOVE, 0, menu, item); };
    }
    Step Click(HMENU menu, UINT item) {
        return [=, this] {
            return Mouse(WM_MOUSEMOVE, 0, menu, item) && Mouse(WM_LBUTTONDOWN, MK_LBUTTON, menu, item) &&
                   Mouse(WM_LBUTTONUP, 0, menu, item);
        };
    }
    Step UntilShown(HMENU menu, bool shown = true) {
        return [=] { return IsShown(menu) == shown; };
    }
    // The window is told nothing of it.
    Step ClickOnWindow() {
        return [this] {
            for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP})
                TdkpFeedMouse(window_, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, 5, 5);
            return true;
        };
    }

    static bool IsShown(HMENU menu) {
        RECT place;
        return GetMenuItemRect(nullptr, menu, 0, &place) != FALSE;
    }
    bool Mouse(UINT message, WPARAM keys, HMENU menu, UINT item) {
        RECT place;
        if (!GetMenuItemRect(nullptr, menu, item, &place)) return false;
        POINT middle = {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
        ScreenToClient(window_, &middle);
        TdkpFeedMouse(window_, message, keys, middle.x, middle.y);
        return true;
    }
    // Of the open menu's window.
    static RECT PlaceOf(HMENU menu) {
        RECT place = {0, 0, 0, 0};
        HWND window = nullptr;
        while ((window = FindWindowExA(nullptr, window, "#32768", nullptr)) != nullptr) {
            if (SendMessageA(window, MN_GETHMENU, 0, 0) == reinterpret_cast<LRESULT>(menu))
                GetWindowRect(window, &place);
        }
        return place;
    }

    TestClass class_;
    HWND window_ = nullptr;
    HMENU menu_ = nullptr, more_ = nullptr;

private:
    const TdkpCounts before_ = tdkviz::test::Counts();
};

TEST_F(UserMenu, HoldsItemsAndTheirStates) {
    EXPECT_EQ(GetMenuItemCount(menu_), 6);
    EXPECT_EQ(GetMenuState(menu_, kMoreAt, MF_BYPOSITION), MF_POPUP | 2u << 8);

    EXPECT_TRUE(CheckMenuRadioItem(menu_, kLoud, kQuiet, kQuiet, MF_BYCOMMAND));
    EXPECT_TRUE(CheckMenuRadioItem(menu_, kLoud, kQuiet, kLoud, MF_BYCOMMAND));
    EXPECT_EQ(GetMenuState(menu_, kLoud, MF_BYCOMMAND), MF_CHECKED | MFT_RADIOCHECK);
    EXPECT_EQ(GetMenuState(menu_, kQuiet, MF_BYCOMMAND) & MF_CHECKED, MF_UNCHECKED);
    EXPECT_EQ(GetMenuState(menu_, kGray, MF_BYCOMMAND), MF_GRAYED) << "in a submenu";
    EXPECT_EQ(GetMenuState(menu_, 999, MF_BYCOMMAND), 0xFFFFFFFFu);

    EXPECT_FALSE(AppendMenuA(menu_, MF_POPUP, 12345, "Nothing"));
    EXPECT_TRUE(DestroyMenu(menu_));
    EXPECT_EQ(GetMenuItemCount(more_), -1);
    EXPECT_FALSE(AppendMenuA(menu_, MF_STRING, 1, "Late"));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_MENU_HANDLE);
}

TEST_F(UserMenu, IsDrivenByKeys) {
    // Round and round, over the separator.
    EXPECT_EQ(Track({Key(VK_DOWN), Key(VK_DOWN), Key(VK_RETURN)}), static_cast<BOOL>(kLoud));
    EXPECT_EQ(Track({Key(VK_UP), Key(VK_UP), Key(VK_UP), Key(VK_RETURN)}), static_cast<BOOL>(kQuiet));
    EXPECT_EQ(Track({Key(VK_END), Key(VK_DOWN), Key(VK_RETURN)}), static_cast<BOOL>(kOpen));
    // A marked character; one that is first in several texts takes turns.
    EXPECT_EQ(Track({Key('W', 'w')}), static_cast<BOOL>(kLast));
    AppendMenuA(menu_, MF_STRING, 107, "Look");
    EXPECT_EQ(Track({Key('L', 'L'), Key('L', 'l'), Key(VK_RETURN)}), 107);
    // Into the submenu, where an item that is grayed can be selected but not chosen, and out again one by one.
    EXPECT_EQ(Track({Key('M', 'm'), UntilShown(more_), Key(VK_RETURN), Key(VK_DOWN), Key(VK_RETURN)}),
              static_cast<BOOL>(kInner));
    EXPECT_EQ(Track({Key(VK_END), Key(VK_UP), Key(VK_UP), Key(VK_RIGHT), UntilShown(more_), Key(VK_LEFT),
                     UntilShown(more_, false), Key(VK_RIGHT), UntilShown(more_), Key(VK_ESCAPE),
                     UntilShown(more_, false), [this] { return IsShown(menu_); }, Key(VK_ESCAPE)}),
              0);
    EXPECT_EQ(class_.Take({WM_KEYDOWN, WM_CHAR}).size(), 0u);
}

TEST_F(UserMenu, IsDrivenByTheMouse) {
    // The submenu opens where the mouse rests, and closes when it rests elsewhere.
    EXPECT_EQ(
        Track({MoveTo(menu_, kMoreAt), UntilShown(more_), MoveTo(menu_, 0), UntilShown(more_, false),
               MoveTo(menu_, kMoreAt), UntilShown(more_), Click(more_, 0), UntilShown(more_), Click(more_, kInnerAt)},
              0),
        TRUE);
    ServeMessages();
    const std::vector<UINT> wanted = {WM_ENTERMENULOOP, WM_INITMENUPOPUP, WM_EXITMENULOOP, WM_COMMAND};
    std::vector<TestClass::Entry> told = class_.Take(wanted);
    ASSERT_EQ(told.size(), 6u);
    EXPECT_EQ(told[0].message, static_cast<UINT>(WM_ENTERMENULOOP));
    EXPECT_EQ(told[1].wParam, reinterpret_cast<WPARAM>(menu_));
    EXPECT_EQ(told[3].wParam, reinterpret_cast<WPARAM>(more_));
    EXPECT_EQ(told[3].lParam, static_cast<LPARAM>(kMoreAt));
    EXPECT_EQ(told[4].message, static_cast<UINT>(WM_EXITMENULOOP));
    EXPECT_EQ(told[5].message, static_cast<UINT>(WM_COMMAND));
    EXPECT_EQ(told[5].wParam, kInner);

    // A click outside closes it, and is for nobody else.
    EXPECT_EQ(Track({MoveTo(menu_, 0), ClickOnWindow()}, TPM_NONOTIFY), TRUE);
    ServeMessages();
    EXPECT_EQ(class_.Take({WM_ENTERMENULOOP, WM_INITMENUPOPUP, WM_COMMAND, WM_LBUTTONDOWN, WM_LBUTTONUP}).size(), 0u);
    EXPECT_EQ(GetFocus(), window_);
}

TEST_F(UserMenu, StaysOnTheScreen) {
    const LONG screenWidth = GetSystemMetrics(SM_CXSCREEN), screenHeight = GetSystemMetrics(SM_CYSCREEN);
    const auto isInside = [&](const RECT& place) {
        return place.right > place.left && place.left >= 0 && place.top >= 0 && place.right <= screenWidth &&
               place.bottom <= screenHeight;
    };
    Track({[&] {
               const RECT place = PlaceOf(menu_);
               EXPECT_TRUE(isInside(place));
               EXPECT_EQ(place.right, screenWidth - 5);
               EXPECT_EQ(place.bottom, screenHeight - 3);
               return true;
           },
           MoveTo(menu_, kMoreAt), UntilShown(more_),
           [&] {
               const RECT place = PlaceOf(more_);
               EXPECT_TRUE(isInside(place));
               EXPECT_LE(place.right, PlaceOf(menu_).left + 8);
               return true;
           },
           Key(VK_ESCAPE), Key(VK_ESCAPE)},
          TPM_RETURNCMD, {screenWidth - 5, screenHeight - 3});

    // More than fit one below the other stand side by side.
    constexpr UINT kMany = 100;
    for (UINT item = 0; item < kMany; ++item)
        AppendMenuA(menu_, MF_STRING, 200 + item, ("Item " + std::to_string(item)).c_str());
    const UINT last = static_cast<UINT>(GetMenuItemCount(menu_)) - 1;
    EXPECT_EQ(Track({[&] {
                         EXPECT_TRUE(isInside(PlaceOf(menu_)));
                         RECT first, other;
                         GetMenuItemRect(nullptr, menu_, 0, &first);
                         GetMenuItemRect(nullptr, menu_, last, &other);
                         EXPECT_GE(other.left, first.right);
                         return true;
                     },
                     Click(menu_, last)}),
              static_cast<BOOL>(200 + kMany - 1));
}

TEST_F(UserMenu, ShowsChecksDotsAndTheSelectionInTwoSizes) {
    CheckMenuRadioItem(menu_, kQuiet, kQuiet, kQuiet, MF_BYCOMMAND);
    const auto count = [this](UINT item, COLORREF color, LONG left, LONG right) {
        const HWND window = FindWindowExA(nullptr, nullptr, "#32768", nullptr);
        RECT frame, row;
        GetWindowRect(window, &frame);
        GetMenuItemRect(nullptr, menu_, item, &row);
        const tdkviz::test::Picture picture(window);
        int found = 0;
        for (LONG y = row.top - frame.top; y < row.bottom - frame.top; ++y) {
            for (LONG x = row.left - frame.left + left; x < row.left - frame.left + right; ++x)
                found += picture.At(x, y) == color;
        }
        return found;
    };
    const DWORD text = 0x000000, highlight = 0x000080;
    int former[2] = {0, 0};
    for (const char* dpi : {"96", "192"}) {
        setenv("TDKVIZ_DPI", dpi, 1);
        const LONG marks = *dpi == '9' ? 22 : 44;
        Track({[&] {
                   const int tick = count(2, text, 0, marks), dot = count(3, text, 0, marks);
                   EXPECT_EQ(count(0, text, 0, marks), 0);
                   EXPECT_GT(tick, 3 * former[0]);
                   EXPECT_GT(dot, 3 * former[1]);
                   former[0] = tick, former[1] = dot;
                   EXPECT_EQ(count(3, highlight, 0, marks), 0);
                   return true;
               },
               MoveTo(menu_, 3), [&] { return count(3, highlight, 0, marks) > 100; },
               [&] { return count(3, text, 0, marks) == 0; }, Key(VK_ESCAPE)});
    }
    unsetenv("TDKVIZ_DPI");
}

TEST_F(UserMenu, ServesTheThreadMeanwhile) {
    TestEvent answered;
    std::unique_ptr<TestThread> other;
    EXPECT_EQ(Track({[&] {
                         other = std::make_unique<TestThread>([&] {
                             SendMessageA(window_, WM_APP, 0, 0);
                             answered.Set();
                         });
                         return true;
                     },
                     [&] { return answered.Await(0); },
                     [&] {
                         EXPECT_FALSE(TrackPopupMenu(menu_, TPM_RETURNCMD, 0, 0, 0, window_, nullptr));
                         EXPECT_EQ(GetLastError(), ERROR_POPUP_ALREADY_ACTIVE);
                         return EndMenu() != FALSE;
                     }}),
              0);
    other.reset();

    // The end of the loop outside is that of the menu, and isn't lost.
    EXPECT_EQ(Track({[] { return PostQuitMessage(9), true; }}), 0);
    MSG message;
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    while (message.message != WM_QUIT && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
    EXPECT_EQ(message.wParam, 9u);

    // So is the end of its window.
    EXPECT_EQ(Track({MoveTo(menu_, kMoreAt), UntilShown(more_), [this] { return DestroyWindow(window_) != FALSE; }}),
              0);
    EXPECT_FALSE(TrackPopupMenu(menu_, TPM_RETURNCMD, 0, 0, 0, window_, nullptr));
}

TEST_F(UserMenu, IsAskedForByMouseAndKeys) {
    const HWND child = class_.Make(WS_CHILD | WS_VISIBLE, window_, 50, 50, "child");
    SetWindowPos(child, nullptr, 10, 20, 50, 50, SWP_NOZORDER);
    SetFocus(child);
    class_.Take({});
    TdkpFeedMouse(window_, WM_RBUTTONUP, 0, 13, 24);
    for (const UINT key : {static_cast<UINT>(VK_APPS), static_cast<UINT>(VK_SHIFT), static_cast<UINT>(VK_F10)})
        TdkpFeedKey(window_, TRUE, key, 0);
    TdkpFeedKey(window_, FALSE, VK_APPS, 0);
    ServeMessages();
    // Each goes up from the child.
    const std::vector<TestClass::Entry> told = class_.Take({WM_CONTEXTMENU});
    ASSERT_EQ(told.size(), 6u);
    for (size_t index = 0; index < told.size(); ++index) {
        EXPECT_EQ(told[index].window, index % 2 == 0 ? child : window_);
        EXPECT_EQ(told[index].wParam, reinterpret_cast<WPARAM>(child));
        EXPECT_EQ(told[index].lParam, index < 2 ? MAKELPARAM(13, 24) : -1);
    }
}

}  // namespace
