// How tests wait for what other threads and programs do.
#pragma once

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

namespace tdkviz::test {

// Longer than anything that has to happen takes on a loaded machine.
inline constexpr std::chrono::milliseconds kPatience{20000};
inline constexpr unsigned kPatienceMilliseconds = 20000;  // for the system's own waits

// Whether the condition came true in time. `meanwhile` runs between two looks at it.
template <typename Condition, typename Meanwhile>
bool WaitUntil(Condition condition, Meanwhile meanwhile) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        meanwhile();
    }
    return true;
}
template <typename Condition>
bool WaitUntil(Condition condition) {
    return WaitUntil(condition, [] { std::this_thread::sleep_for(std::chrono::milliseconds(2)); });
}

inline ptrdiff_t ThreadsOfThisProcess() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}
// A thread that has ended stays listed for a moment.
inline bool ThreadsBecome(ptrdiff_t count) {
    return WaitUntil([count] { return ThreadsOfThisProcess() == count; });
}
// How many there are when a thread has come and gone: with the first one a sanitizer starts its own.
inline ptrdiff_t ThreadsAtRest() {
    std::filesystem::path task;
    std::thread([&task] { task = "/proc/self/task/" + std::to_string(gettid()); }).join();
    WaitUntil([&task] { return !std::filesystem::exists(task); });
    return ThreadsOfThisProcess();
}

}  // namespace tdkviz::test
