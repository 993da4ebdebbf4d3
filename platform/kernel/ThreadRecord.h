// What the layer knows of a thread: its number, its wait, its end.
//
// Invariants:
//  1. A thread is in at most one wait, and its record carries it. `Waiting` is true while the record
//     stands in the dispatcher's list.
//  2. One token of `Wake` is posted for each wait that somebody else ends, and its owner takes it.
//  3. `TestReady` of a record with `Terminating` set is never called again: its argument may be gone.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include <semaphore.h>
#include <sys/types.h>

#include "platform/kernel/Dispatcher.h"

namespace tdkp {

class WaitableObject;

struct ThreadRecord {
    ThreadRecord(uint32_t id, bool madeByLayer);
    ~ThreadRecord();
    ThreadRecord(const ThreadRecord&) = delete;
    ThreadRecord& operator=(const ThreadRecord&) = delete;

    // Fixed after construction, but for the two that the thread itself sets at its start.
    const uint32_t Id;
    const bool MadeByLayer;
    uint32_t (*Entry)(void*) = nullptr;
    void* Argument = nullptr;
    std::atomic<pid_t> KernelId{0};
    sem_t Wake;

    // Guarded by the dispatcher's lock.
    bool Counted;  // one of those that the stepped clock waits for
    bool Ended = false;
    bool Terminating = false;
    uint32_t TerminationCode = 0;
    uint32_t ExitCode;
    bool Waiting = false;
    bool Granted = false;
    ReadyTest Test{nullptr, nullptr};
    uint64_t Deadline = 0;  // nanoseconds on the layer's clock
    // The objects of its waits, the innermost last: kept here and not on the stack, so that a thread
    // that is terminated in a wait lets them go.
    std::vector<std::shared_ptr<WaitableObject>> WaitObjects;
    ThreadRecord* Previous = nullptr;
    ThreadRecord* Next = nullptr;

    // Shared between the thread's signal handler and the thread that terminates it; see Termination.cpp.
    int EndRequest = 0;
};

// What only the thread itself touches, and the signal handler that interrupts it.
struct ThreadState {
    ThreadRecord* Record = nullptr;
    volatile int DeferralDepth = 0;
    volatile bool EndPending = false;
    volatile bool Parked = false;
    // The handler's own: how often it found a bad moment, and where the thread stood then.
    volatile int Standstills = 0;
    volatile uintptr_t LastCode = 0;
    volatile uintptr_t LastStack = 0;
};

extern constinit thread_local ThreadState currentThread;

// The calling thread's record, made at its first use on a thread that the layer didn't make. With or
// without the lock.
ThreadRecord& CurrentRecord();

// A record for a thread about to be made, counted as running from now on.
std::shared_ptr<ThreadRecord> AddThreadRecord();
// Ends it: takes it out of its wait and of the register, sets its exit code and wakes its waiters.
void EndThreadRecord(DispatcherGuard& guard, ThreadRecord& record, uint32_t exitCode);

void RunThreadEndHooks(uint32_t threadId);

}  // namespace tdkp
