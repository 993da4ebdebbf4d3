// A word to the user that goes by itself.
#pragma once

#include <windows.h>

#include <algorithm>
#include <string>
#include <utility>

namespace tdkplay {

class PassingNote {
public:
    void Show(std::string text) {
        text_ = std::move(text);
        shownAt_ = GetTickCount();
    }
    const std::string& Text() const { return text_; }
    // Milliseconds until it has been there long enough; INFINITE if there is none.
    DWORD Left() const { return text_.empty() ? INFINITE : kShown - std::min(GetTickCount() - shownAt_, kShown); }
    // Takes it away if its time is over; tells whether it did.
    bool Pass() {
        if (Left() != 0) return false;
        text_.clear();
        return true;
    }

private:
    static constexpr DWORD kShown = 2000;  // milliseconds

    std::string text_;
    DWORD shownAt_ = 0;  // by GetTickCount
};

}  // namespace tdkplay
