#include "platform/kernel/ChangeReader.h"

#include <cerrno>
#include <system_error>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "platform/kernel/ChangeNotification.h"
#include "platform/kernel/Immortal.h"
#include "platform/kernel/SignalsBlocked.h"
#include "platform/kernel/Termination.h"

namespace tdkp {
namespace {

constexpr int kEventsAtOnce = 8;

bool Poll(int poll, int descriptor) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    return epoll_ctl(poll, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

}  // namespace

ChangeReader& TheChangeReader() {
    return Immortal<ChangeReader>();
}

bool ChangeReader::Add(ChangeNotification& notification) {
    LayerGuard life(life_);
    if (!thread_.joinable() && !Start()) {
        return false;
    }
    const int descriptor = notification.Descriptor();
    bool isLast = false;
    {
        LayerGuard guard(lock_);
        notifications_[descriptor] = &notification;
        if (Poll(poll_, descriptor)) {
            return true;
        }
        notifications_.erase(descriptor);
        isLast = notifications_.empty();
    }
    if (isLast) {
        Stop();
    }
    return false;
}

void ChangeReader::Remove(ChangeNotification& notification) {
    LayerGuard life(life_);
    bool isLast = false;
    {
        LayerGuard guard(lock_);
        epoll_ctl(poll_, EPOLL_CTL_DEL, notification.Descriptor(), nullptr);
        notifications_.erase(notification.Descriptor());
        isLast = notifications_.empty();
    }
    if (isLast) {
        Stop();
    }
}

bool ChangeReader::Start() {
    poll_ = epoll_create1(EPOLL_CLOEXEC);
    end_ = eventfd(0, EFD_CLOEXEC);
    if (poll_ >= 0 && end_ >= 0 && Poll(poll_, end_)) {
        try {
            const SignalsBlocked blocked;
            thread_ = std::thread([this] { Run(); });
            return true;
        } catch (const std::system_error&) {
        }
    }
    CloseDescriptors();
    return false;
}

void ChangeReader::Stop() {
    eventfd_write(end_, 1);
    thread_.join();
    AwaitKernelExit(kernelId_.load(std::memory_order_relaxed));
    CloseDescriptors();
}

void ChangeReader::CloseDescriptors() {
    for (int* descriptor : {&end_, &poll_}) {
        if (*descriptor >= 0) {
            close(*descriptor);
        }
        *descriptor = -1;
    }
}

void ChangeReader::Run() {
    MarkServiceThread();
    kernelId_.store(gettid(), std::memory_order_relaxed);
    for (;;) {
        epoll_event events[kEventsAtOnce];
        const int count = epoll_wait(poll_, events, kEventsAtOnce, -1);
        if (count < 0 && errno != EINTR) {
            return;
        }
        for (int i = 0; i < count; ++i) {
            if (events[i].data.fd == end_) {
                return;
            }
            Serve(events[i].data.fd);
        }
    }
}

void ChangeReader::Serve(int descriptor) {
    LayerGuard guard(lock_);
    const auto found = notifications_.find(descriptor);
    if (found != notifications_.end()) {
        found->second->TakeNews();
    }
}

}  // namespace tdkp
