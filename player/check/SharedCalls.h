// What the process that tries a plug-in tells its parent even when it dies: the calls in flight, and the fault that
// ended it. It lies in memory that both processes have.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace tdkplay::check {

// One thread's call into the plug-in. The name is written before Since is set.
struct CallSlot {
    std::atomic<uint64_t> Since;  // nanoseconds of the monotonic clock; 0: none under way
    std::array<char, 96> Name;    // zero-terminated
};

struct CrashRecord {
    std::atomic<int> Signal;      // 0: none was seen
    std::array<char, 96> During;  // the call of the thread that crashed; empty: none
    bool IsOwnThread;             // of the plug-in: no thread of the check's
    uint64_t Address;
    bool HasAddress;
};

struct SharedCalls {
    static constexpr int kSlots = 3;
    // Who uses which slot.
    static constexpr int kMainSlot = 0;
    static constexpr int kFrameSlot = 1;
    static constexpr int kOtherSlot = 2;
    static constexpr int kNoSlot = -1;

    std::array<CallSlot, kSlots> Slots;
    CrashRecord Crash;
};
static_assert(std::atomic<uint64_t>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

// Nanoseconds of the monotonic clock, which is the same in both processes.
uint64_t MonotonicNow();

// The process's own: null until it is set, and in a process that isn't a child of a check.
SharedCalls* OwnCalls();
void SetOwnCalls(SharedCalls* calls);

// The calling thread's slot from now on; none if nothing is said.
void UseCallSlot(int slot);
int OwnCallSlot();

// Names the call that the calling thread makes, for as long as it lives.
class CallScope {
public:
    explicit CallScope(const char* name);
    ~CallScope();
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
};

}  // namespace tdkplay::check
