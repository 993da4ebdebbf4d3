#include "platform/kernel/Dispatcher.h"

#include <cerrno>
#include <ctime>
#include <vector>

#include <semaphore.h>

#include "platform/kernel/Clock.h"
#include "platform/kernel/Immortal.h"
#include "platform/kernel/Termination.h"
#include "platform/kernel/ThreadRecord.h"
#include "platform/kernel/WaitList.h"

namespace tdkp {
namespace {

// Guarded by the dispatcher's lock.
struct WaitList {
    ThreadRecord* First = nullptr;
    ThreadRecord* Last = nullptr;
    int32_t RunningThreads = 0;
    std::vector<ThreadRecord*> Settlers;  // woken at each change of RunningThreads that may be the last
};

WaitList& Waits() {
    return Immortal<WaitList>();
}

void JoinWaitList(DispatcherGuard& guard, ThreadRecord& record) {
    WaitList& waits = Waits();
    record.Waiting = true;
    record.Granted = false;
    record.Previous = waits.Last;
    record.Next = nullptr;
    (waits.Last != nullptr ? waits.Last->Next : waits.First) = &record;
    waits.Last = &record;
    if (record.Counted) {
        RemoveRunningThread(guard);
    }
}

// Blocks until a token of `Wake` comes; false if the machine's clock passes the deadline first.
bool Park(ThreadRecord& record, uint64_t deadline) {
    timespec until{};
    until.tv_sec = static_cast<time_t>(deadline / kNanosecondsPerSecond);
    until.tv_nsec = static_cast<long>(deadline % kNanosecondsPerSecond);
    const bool limited = deadline != kNoDeadline && !UsesSteppedClock();
    currentThread.Parked = true;
    int result = 0;
    do {
        result = limited ? sem_clockwait(&record.Wake, CLOCK_MONOTONIC, &until) : sem_wait(&record.Wake);
    } while (result != 0 && errno == EINTR);
    currentThread.Parked = false;
    return result == 0;
}

void TakeToken(ThreadRecord& record) {
    while (sem_wait(&record.Wake) != 0 && errno == EINTR) {
    }
}

}  // namespace

TerminationDeferral::TerminationDeferral() {
    BeginDeferral();
}
TerminationDeferral::~TerminationDeferral() {
    EndDeferral();
}

void LayerMutex::lock() {
    BeginDeferral();
    mutex_.lock();
}

void LayerMutex::unlock() {
    mutex_.unlock();
    EndDeferral();
}

LayerMutex& DispatcherLock() {
    static constinit LayerMutex lock;
    return lock;
}

bool WaitReady(DispatcherGuard& guard, ReadyTest test, uint32_t milliseconds) {
    return WaitReadyUntil(guard, test, DeadlineAfter(milliseconds));
}

bool WaitReadyUntil(DispatcherGuard& guard, ReadyTest test, uint64_t deadline) {
    if (test.function(test.argument)) {
        return true;
    }
    if (deadline != kNoDeadline && deadline <= Now()) {
        return false;
    }
    ThreadRecord& record = CurrentRecord();
    record.Test = test;
    record.Deadline = deadline;
    JoinWaitList(guard, record);
    guard.unlock();
    const bool tokenTaken = Park(record, deadline);
    guard.lock();
    if (record.Waiting) {
        LeaveWaitList(guard, record);
    } else if (!tokenTaken) {
        TakeToken(record);
    }
    return record.Granted;
}

void WakeWaiters(DispatcherGuard& guard) {
    for (ThreadRecord* record = Waits().First; record != nullptr;) {
        ThreadRecord* const next = record->Next;
        if (!record->Terminating && record->Test.function(record->Test.argument)) {
            LeaveWaitList(guard, *record);
            record->Granted = true;
            sem_post(&record->Wake);
        }
        record = next;
    }
}

void LeaveWaitList(DispatcherGuard& guard, ThreadRecord& record) {
    WaitList& waits = Waits();
    (record.Previous != nullptr ? record.Previous->Next : waits.First) = record.Next;
    (record.Next != nullptr ? record.Next->Previous : waits.Last) = record.Previous;
    record.Previous = nullptr;
    record.Next = nullptr;
    record.Waiting = false;
    if (record.Counted) {
        AddRunningThread(guard);
    }
}

void ForgetWaits(DispatcherGuard& guard, ThreadRecord& record) {
    if (record.Waiting) {
        LeaveWaitList(guard, record);
    }
    std::erase(Waits().Settlers, &record);
}

ThreadRecord* FirstDue(DispatcherGuard&, uint64_t time) {
    ThreadRecord* due = nullptr;
    for (ThreadRecord* record = Waits().First; record != nullptr; record = record->Next) {
        const bool limited = record->Deadline != kNoDeadline && !record->Terminating;
        if (limited && record->Deadline <= time && (due == nullptr || record->Deadline < due->Deadline)) {
            due = record;
        }
    }
    return due;
}

void TimeOutWait(DispatcherGuard& guard, ThreadRecord& record) {
    LeaveWaitList(guard, record);
    sem_post(&record.Wake);
}

void AddRunningThread(DispatcherGuard&) {
    ++Waits().RunningThreads;
}

void RemoveRunningThread(DispatcherGuard&) {
    WaitList& waits = Waits();
    --waits.RunningThreads;
    for (ThreadRecord* settler : waits.Settlers) {
        sem_post(&settler->Wake);
    }
    waits.Settlers.clear();
}

void WaitUntilSettled(DispatcherGuard& guard) {
    ThreadRecord& self = CurrentRecord();
    while (Waits().RunningThreads > (self.Counted ? 1 : 0)) {
        Waits().Settlers.push_back(&self);
        guard.unlock();
        TakeToken(self);
        guard.lock();
    }
}

}  // namespace tdkp
