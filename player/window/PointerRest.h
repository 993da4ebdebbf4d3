// In full screen the mouse pointer, and what comes with it, goes when the mouse has rested for a while.
#pragma once

#include <windows.h>

namespace tdkplay {

// For the thread of the window, whose procedure hands on what concerns it.
class PointerRest {
public:
    static constexpr UINT_PTR kTimer = 1;  // of the window

    // Full screen begins or ends, for this window.
    void Begin(HWND window);
    void End();
    // In full screen, as long as the mouse rests.
    bool IsResting() const { return isOn_ && isResting_; }

    // The mouse is over the window. True if that has ended its rest.
    bool OnPointer();
    // The window's timer has run out. True if a rest begins.
    bool OnTimer();

private:
    void Restart() const;

    HWND window_ = nullptr;
    bool isOn_ = false;
    bool isResting_ = false;
    POINT last_ = {};  // on the screen
};

}  // namespace tdkplay
