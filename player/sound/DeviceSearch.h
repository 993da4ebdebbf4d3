// Looks for a device that isn't there, again and again on a thread of its own, since opening one may take a while.
#pragma once

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace tdkplay {

// For real time only: its pauses don't follow a stepped clock. Any thread may call anything but the end.
template <typename Device>
class DeviceSearch {
public:
    // `open` gives null as long as there is no device, and throws nothing; `wake` is set when one was found, and
    // outlives the search.
    DeviceSearch(std::function<std::unique_ptr<Device>()> open, HANDLE wake) : open_(std::move(open)), wake_(wake) {}

    // Does nothing if the search is under way.
    void Begin() {
        const std::lock_guard lock(mutex_);
        if (isSearching_) return;
        isSearching_ = true;
        thread_ = std::jthread([this](const std::stop_token& stop) { Search(stop); });
    }
    // What was found, once.
    std::unique_ptr<Device> Take() {
        const std::lock_guard lock(mutex_);
        return std::move(found_);
    }

private:
    static constexpr std::chrono::milliseconds kInterval{1000};

    void Search(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            std::unique_ptr<Device> device = open_();
            std::unique_lock lock(mutex_);
            if (device) {
                found_ = std::move(device);
                isSearching_ = false;
                SetEvent(wake_);
                return;
            }
            pause_.wait_for(lock, stop, kInterval, [] { return false; });
        }
    }

    const std::function<std::unique_ptr<Device>()> open_;
    const HANDLE wake_;
    std::mutex mutex_;  // guards what follows
    std::condition_variable_any pause_;
    std::unique_ptr<Device> found_;
    bool isSearching_ = false;
    std::jthread thread_;  // the last member: it uses the others until its end
};

}  // namespace tdkplay
