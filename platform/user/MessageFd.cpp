#include "platform/user/MessageFd.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include "platform/kernel/Clock.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {
namespace {

void CloseIfOpen(int fd) {
    if (fd >= 0) close(fd);
}

void Watch(int poll, int fd) {
    epoll_event event = {};
    event.events = EPOLLIN;
    event.data.fd = fd;
    epoll_ctl(poll, EPOLL_CTL_ADD, fd, &event);
}

}  // namespace

MessageFd::~MessageFd() {
    CloseIfOpen(timer_);
    CloseIfOpen(event_);
    CloseIfOpen(poll_);
}

int MessageFd::Descriptor() {
    if (poll_ >= 0) return poll_;
    event_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    timer_ = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
    poll_ = epoll_create1(EPOLL_CLOEXEC);
    if (poll_ < 0 || event_ < 0 || timer_ < 0) {
        CloseIfOpen(timer_);
        CloseIfOpen(event_);
        CloseIfOpen(poll_);
        poll_ = event_ = timer_ = -1;
        return -1;
    }
    Watch(poll_, event_);
    Watch(poll_, timer_);
    return poll_;
}

void MessageFd::Set(bool readable, uint32_t untilTimer) {
    if (!IsMade()) return;
    if (readable != readable_) {
        readable_ = readable;
        uint64_t count = 1;
        const ssize_t moved = readable ? write(event_, &count, sizeof(count)) : read(event_, &count, sizeof(count));
        static_cast<void>(moved);
    }
    itimerspec when = {};
    if (untilTimer != kInfinite) {
        const uint64_t nanoseconds = untilTimer * kNanosecondsPerMillisecond;
        when.it_value.tv_sec = static_cast<time_t>(nanoseconds / kNanosecondsPerSecond);
        when.it_value.tv_nsec = static_cast<long>(nanoseconds % kNanosecondsPerSecond);
        if (untilTimer == 0) when.it_value.tv_nsec = 1;  // zero would disarm it
    }
    timerfd_settime(timer_, 0, &when, nullptr);
}

}  // namespace tdkp
