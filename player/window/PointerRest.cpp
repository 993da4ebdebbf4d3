#include "player/window/PointerRest.h"

#include <utility>

namespace tdkplay {
namespace {

constexpr UINT kPatience = 2500;  // milliseconds

}  // namespace

void PointerRest::Begin(HWND window) {
    window_ = window;
    isOn_ = true;
    isResting_ = true;
    GetCursorPos(&last_);
    Restart();
}

void PointerRest::End() {
    if (!isOn_) return;
    isOn_ = false;
    KillTimer(window_, kTimer);
    SetCursor(LoadCursorA(nullptr, IDC_ARROW));
}

void PointerRest::Restart() const {
    SetTimer(window_, kTimer, kPatience, nullptr);
}

// A window that comes or goes below the pointer brings mouse messages, too: only another place counts.
bool PointerRest::OnPointer() {
    POINT place = {};
    if (!isOn_ || !GetCursorPos(&place) || (place.x == last_.x && place.y == last_.y)) return false;
    last_ = place;
    Restart();
    return std::exchange(isResting_, false);
}

bool PointerRest::OnTimer() {
    KillTimer(window_, kTimer);
    SetCursor(nullptr);
    return !std::exchange(isResting_, true);
}

}  // namespace tdkplay
