// A memory display, a parent window and the pixels of a window, for the tests of surfaces and windows.
#pragma once

#include <functional>
#include <vector>

#include <windows.h>

#include <tdkplatform.h>

namespace tdkviz::test {

inline constexpr int kDisplayWidth = 1600;
inline constexpr int kDisplayHeight = 1000;

// No effect, and none needed, if another test of the process was first.
inline void UseMemoryDisplay() {
    TdkpUseMemoryDisplay(kDisplayWidth, kDisplayHeight, 32);
}

// The picture of a window, top row first.
struct Picture {
    int width = 0, height = 0;
    std::vector<DWORD> pixels;

    explicit Picture(HWND window) : pixels(kDisplayWidth * kDisplayHeight) {
        if (!TdkpReadWindow(window, pixels.data(), static_cast<int>(pixels.size()), &width, &height))
            width = height = 0;
        pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
    }
    DWORD At(int x, int y) const {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
    // The first pixel that isn't of this colour, or -1.
    int FirstOtherThan(DWORD color) const {
        for (size_t i = 0; i < pixels.size(); ++i) {
            if ((pixels[i] & 0xFFFFFF) != color) return static_cast<int>(i);
        }
        return -1;
    }
};

inline void ServeMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
}

// A visible top-level window of this thread.
class ParentWindow {
public:
    ParentWindow() {
        UseMemoryDisplay();
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

inline TdkpCounts Counts() {
    TdkpCounts counts = {};
    TdkpCount(&counts);
    return counts;
}

}  // namespace tdkviz::test
