// What a person does to an open menu.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <deque>
#include <functional>
#include <utility>

#include "tests/support/Wait.h"

namespace tdkviz::test {

// True when it is done; else it is tried again.
using MenuStep = std::function<bool()>;

// Opens the menu there and takes the steps on a timer: that comes when nothing else waits, so each step finds what the
// one before has brought about. Gives what TrackPopupMenu gives.
inline BOOL TrackMenu(HMENU menu, UINT flags, POINT at, HWND window, std::deque<MenuStep> steps) {
    constexpr UINT kStepMilliseconds = 10;
    static std::deque<MenuStep> script;
    static DWORD end = 0;
    script = std::move(steps);
    end = GetTickCount() + kPatienceMilliseconds;
    const auto takeStep = [](HWND, UINT, UINT_PTR, DWORD now) {
        if (static_cast<int32_t>(now - end) > 0) {
            EndMenu();
        } else if (!script.empty()) {
            const MenuStep step = script.front();
            script.pop_front();
            if (!step()) script.push_front(step);
        }
    };
    const UINT_PTR timer = SetTimer(nullptr, 0, kStepMilliseconds, takeStep);
    const BOOL result = TrackPopupMenu(menu, flags, at.x, at.y, 0, window, nullptr);
    KillTimer(nullptr, timer);
    EXPECT_TRUE(script.empty()) << script.size() << " steps left";
    return result;
}

}  // namespace tdkviz::test
