// The waits that are under way, in the order in which they began, and the count of the threads that are
// not in one. Everything here wants the dispatcher's lock.
#pragma once

#include "platform/kernel/ThreadRecord.h"

namespace tdkp {

constexpr uint64_t kNoDeadline = ~uint64_t{0};

// As WaitReady, up to a point of time in nanoseconds on the layer's clock.
bool WaitReadyUntil(DispatcherGuard& guard, ReadyTest test, uint64_t deadline);

// Takes a record out without waking its thread, and counts the thread as running.
void LeaveWaitList(DispatcherGuard& guard, ThreadRecord& record);

// Removes every trace of a thread that has ended.
void ForgetWaits(DispatcherGuard& guard, ThreadRecord& record);

// The wait that ends first of those with a limit not after `time`; of equals the one that began first. May be null.
ThreadRecord* FirstDue(DispatcherGuard& guard, uint64_t time);
// Ends it as timed out.
void TimeOutWait(DispatcherGuard& guard, ThreadRecord& record);

// Threads made by the layer that are not in a wait.
void AddRunningThread(DispatcherGuard& guard);
void RemoveRunningThread(DispatcherGuard& guard);
// Blocks until there are none but, if it is one, the caller. The lock is released in between.
void WaitUntilSettled(DispatcherGuard& guard);

}  // namespace tdkp
