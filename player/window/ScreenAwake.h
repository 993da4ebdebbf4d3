// Keeps the screen from going dark while somebody watches.
#pragma once

#include <windows.h>

#include <utility>

namespace tdkplay {

// For one thread, with which it ends at the latest.
class ScreenAwake {
public:
    ScreenAwake() = default;
    ~ScreenAwake() { Keep(false); }
    ScreenAwake(const ScreenAwake&) = delete;
    ScreenAwake& operator=(const ScreenAwake&) = delete;

    void Keep(bool awake) {
        if (std::exchange(isAwake_, awake) != awake)
            SetThreadExecutionState(awake ? ES_CONTINUOUS | ES_DISPLAY_REQUIRED : ES_CONTINUOUS);
    }

private:
    bool isAwake_ = false;
};

}  // namespace tdkplay
