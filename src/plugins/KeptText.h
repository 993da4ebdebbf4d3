// KeptText: text that changes now and then while other threads read it without a lock.
#pragma once

#include <atomic>
#include <forward_list>

#include "src/support/NQString.h"

namespace tdkviz {

// Whatever Get gave stays good as long as the KeptText lives: a new text is put beside the old ones. So it
// is for text that changes a few times in a life. One thread at a time may call Set.
class KeptText {
public:
    const char* Get() const { return current_.load(std::memory_order_acquire); }
    void Set(const CNQString& text) {
        if (text == Get()) return;
        versions_.emplace_front(text.GetText());
        current_.store(versions_.front().GetText(), std::memory_order_release);
    }

private:
    std::forward_list<CNQString> versions_;
    std::atomic<const char*> current_{""};
};

}  // namespace tdkviz
