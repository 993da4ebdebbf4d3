// A descriptor for foreign main loops: readable while something waits for a thread.
#pragma once

#include <cstdint>

namespace tdkp {

class MessageFd {
public:
    MessageFd() = default;
    ~MessageFd();
    MessageFd(const MessageFd&) = delete;
    MessageFd& operator=(const MessageFd&) = delete;

    // Made by the first call; -1 if the system has no descriptor left. Belongs to this object.
    int Descriptor();
    bool IsMade() const { return poll_ >= 0; }
    // `untilTimer`: milliseconds after which it turns readable by itself, or kInfinite.
    void Set(bool readable, uint32_t untilTimer);

private:
    int poll_ = -1;
    int event_ = -1;
    int timer_ = -1;
    bool readable_ = false;
};

}  // namespace tdkp
