// Ctrl-C and a request to terminate, as a flag and an event instead of an end in the middle of things.
#pragma once

#include <atomic>
#include <csignal>
#include <mutex>
#include <thread>

#include "player/base/Event.h"

namespace tdkplay {

// Made before any other thread, so that all of them leave the signals to this object.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    bool IsRequested() const { return requested_; }
    // `event` is set when the request comes; null takes it back, which must come before its end.
    void Report(const Event* event);

private:
    void Wait();

    sigset_t signals_ = {};
    std::atomic<bool> requested_ = false;
    std::mutex mutex_;
    const Event* event_ = nullptr;  // guarded by mutex_
    std::thread thread_;
};

}  // namespace tdkplay
