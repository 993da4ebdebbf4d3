#include "player/check/FrameThread.h"

#include <utility>

#include "player/check/CrashHandler.h"
#include "player/check/SharedCalls.h"

namespace tdkplay::check {

FrameThread::FrameThread() : thread_([this] { Serve(); }) {}

FrameThread::~FrameThread() {
    {
        const std::lock_guard hold(mutex_);
        isEnding_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void FrameThread::Run(const std::function<void()>& work) {
    std::unique_lock hold(mutex_);
    work_ = &work;
    changed_.notify_all();
    changed_.wait(hold, [this] { return !work_; });
    if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
}

void FrameThread::Serve() {
    const HandlerStack stack;
    UseCallSlot(SharedCalls::kFrameSlot);
    std::unique_lock hold(mutex_);
    for (;;) {
        changed_.wait(hold, [this] { return work_ || isEnding_; });
        if (!work_) return;
        hold.unlock();
        try {
            (*work_)();
        } catch (...) {
            thrown_ = std::current_exception();
        }
        hold.lock();
        work_ = nullptr;
        changed_.notify_all();
    }
}

}  // namespace tdkplay::check
