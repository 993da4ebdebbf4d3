// A memory display and a parent window on it, for the tests of surfaces and windows.
#pragma once

#include "tests/support/Picture.h"

namespace tdkviz::test {

inline constexpr int kDisplayWidth = 1600;
inline constexpr int kDisplayHeight = 1000;

// No effect, and none needed, if another test of the process was first.
inline void UseMemoryDisplay(int depth = 32) {
    TdkpUseMemoryDisplay(kDisplayWidth, kDisplayHeight, depth);
}

// Of a picture in which every pixel differs from its neighbours; coordinates from the top.
inline uint32_t ColorAt(int x, int y) {
    return static_cast<uint32_t>(0x010101 + (x << 12) + y) & 0xFFFFFF;
}

// A visible top-level window of this thread.
class ParentWindow {
public:
    explicit ParentWindow(int depth = 32) {
        UseMemoryDisplay(depth);
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = DefWindowProcA;
        windowClass.lpszClassName = "RenderTestParent";
        RegisterClassA(&windowClass);
        handle_ = CreateWindowExA(0, windowClass.lpszClassName, "", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0,
                                  kDisplayWidth, kDisplayHeight, nullptr, nullptr, nullptr, nullptr);
    }
    ~ParentWindow() {
        DestroyWindow(handle_);
        UnregisterClassA("RenderTestParent", nullptr);
        ServeMessages();
    }
    ParentWindow(const ParentWindow&) = delete;
    ParentWindow& operator=(const ParentWindow&) = delete;
    HWND Handle() const { return handle_; }

private:
    HWND handle_ = nullptr;
};

}  // namespace tdkviz::test
