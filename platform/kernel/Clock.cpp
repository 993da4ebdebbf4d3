#include "platform/kernel/Clock.h"

#include <algorithm>
#include <atomic>
#include <ctime>

#include "platform/include/tdkplatform.h"
#include "platform/include/winbase.h"
#include "platform/kernel/WaitList.h"

namespace tdkp {
namespace {

enum ClockKind : int { kUndecided, kMachine, kStepped };

std::atomic<int> clockKind{kUndecided};
std::atomic<uint64_t> steppedNow{0};
LayerMutex advanceLock;

constexpr uint64_t kNanosecondsPerCount = 100;  // the performance counter runs at 10 MHz

// Takes `wanted` if nothing has been chosen yet; gives the choice that stands.
int ChooseClock(ClockKind wanted) {
    int chosen = clockKind.load(std::memory_order_relaxed);
    if (chosen == kUndecided &&
        clockKind.compare_exchange_strong(chosen, wanted, std::memory_order_relaxed, std::memory_order_relaxed)) {
        return wanted;
    }
    return chosen;
}

// One due wait at a time, and everything that follows from it before the next.
void AdvanceSteppedClock(uint64_t nanoseconds) {
    LayerGuard onlyOne(advanceLock);
    DispatcherGuard guard(DispatcherLock());
    const uint64_t target = steppedNow.load(std::memory_order_relaxed) + nanoseconds;
    WaitUntilSettled(guard);
    while (ThreadRecord* due = FirstDue(guard, target)) {
        const uint64_t now = steppedNow.load(std::memory_order_relaxed);
        steppedNow.store(std::max(now, due->Deadline), std::memory_order_relaxed);
        TimeOutWait(guard, *due);
        WaitUntilSettled(guard);
    }
    steppedNow.store(target, std::memory_order_relaxed);
}

}  // namespace

bool UsesSteppedClock() {
    return ChooseClock(kMachine) == kStepped;
}

uint64_t Now() {
    return UsesSteppedClock() ? steppedNow.load(std::memory_order_relaxed) : MachineNow();
}

uint64_t MachineNow() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * kNanosecondsPerSecond + static_cast<uint64_t>(now.tv_nsec);
}

uint64_t DeadlineAfter(uint32_t milliseconds) {
    return milliseconds == kInfinite ? kNoDeadline : Now() + milliseconds * kNanosecondsPerMillisecond;
}

}  // namespace tdkp

BOOL TdkpUseSteppedClock() {
    return tdkp::ChooseClock(tdkp::kStepped) == tdkp::kStepped ? TRUE : FALSE;
}

void TdkpAdvanceClock(DWORD milliseconds) {
    if (tdkp::UsesSteppedClock()) {
        tdkp::AdvanceSteppedClock(milliseconds * tdkp::kNanosecondsPerMillisecond);
    }
}

void TdkpSettle() {
    tdkp::DispatcherGuard guard(tdkp::DispatcherLock());
    tdkp::WaitUntilSettled(guard);
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    if (count == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    count->QuadPart = static_cast<LONGLONG>(tdkp::Now() / tdkp::kNanosecondsPerCount);
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    if (frequency == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    frequency->QuadPart = static_cast<LONGLONG>(tdkp::kNanosecondsPerSecond / tdkp::kNanosecondsPerCount);
    return TRUE;
}

DWORD GetTickCount() {
    return static_cast<DWORD>(tdkp::Now() / tdkp::kNanosecondsPerMillisecond);
}
