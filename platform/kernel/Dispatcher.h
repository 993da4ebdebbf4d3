// The one lock and the one way to wait that every waitable thing of the layer shares: events,
// threads, message queues, sleeps, and the clock that bounds them.
//
// Invariants:
//  1. All waitable state (signal flags, queue contents, thread ends) changes under DispatcherLock().
//  2. Whoever changes such state calls WakeWaiters() before it lets the lock go.
//  3. A wait is granted by whoever makes it true: WakeWaiters() runs the ready function of each
//     waiting thread in the order in which they began to wait. A ready function that consumes what it
//     waited for (an auto-reset event) does so inside the call, so each signal serves one waiter.
//  4. The lock is never held across a call into the program (window procedures, thread entries).
//  5. A thread is never terminated while it holds the lock, or within a TerminationDeferral.
#pragma once

#include <cstdint>
#include <mutex>

namespace tdkp {

// Put around the use of every other lock, of the layer's own or of a library that it calls (the display
// connection, the database): TerminateThread lets the thread come out of it first. Nests. Never put
// around a call into the program, which may not come back.
class TerminationDeferral {
public:
    TerminationDeferral();
    ~TerminationDeferral();
    TerminationDeferral(const TerminationDeferral&) = delete;
    TerminationDeferral& operator=(const TerminationDeferral&) = delete;
};

// A lock with such a deferral from before it is taken until after it is let go. The rooms' own locks
// are of this class. Not recursive.
class LayerMutex {
public:
    void lock();
    void unlock();

private:
    std::mutex mutex_;
};

using LayerGuard = std::lock_guard<LayerMutex>;
using DispatcherGuard = std::unique_lock<LayerMutex>;

LayerMutex& DispatcherLock();

// No limit on a wait.
constexpr uint32_t kInfinite = 0xFFFFFFFFu;

// A ready function and its argument. Called under the dispatcher's lock, by any thread; it must not
// block and must not call back into the dispatcher. True ends the wait.
struct ReadyTest {
    bool (*function)(void* argument);
    void* argument;
};

// Blocks the calling thread until the test says true or `milliseconds` have passed on the layer's
// clock (machine or stepped). The guard is held on entry and on return, and released in between.
// Gives true if the test said true, false on time-out. With 0 it tests once and returns.
bool WaitReady(DispatcherGuard& guard, ReadyTest test, uint32_t milliseconds);

template <typename Ready>
bool WaitUntilReady(DispatcherGuard& guard, Ready& ready, uint32_t milliseconds) {
    return WaitReady(guard, ReadyTest{[](void* argument) { return (*static_cast<Ready*>(argument))(); }, &ready},
                     milliseconds);
}

// Runs the tests of all waiting threads and lets go those that say true. The guard must be held.
void WakeWaiters(DispatcherGuard& guard);

// The layer's own service threads (a reader of the display connection) call this once at their start:
// the stepped clock then doesn't count them among the threads that have to wait before it moves.
void MarkServiceThread();

// Identifies the calling thread as GetCurrentThreadId does. The number is not used again while any
// thread with it lives. With or without the lock.
uint32_t CurrentThreadId();

// What the rooms above keep for each thread (its message queue). `OnEnd` functions run on the thread
// that ends, after its entry function has returned, without the dispatcher's lock; for a thread that
// was terminated they run on the terminating thread with the ended thread's id.
using ThreadEndHook = void (*)(uint32_t threadId);
void AddThreadEndHook(ThreadEndHook hook);

// Supplied by the room above (user) for waits that include messages: says whether input newer than
// the last look waits for this thread, in the categories of `wakeMask` (QS_ bits). Called under the lock.
// `ServeSentMessages` is called without the lock, when a message wait wakes for a sent message; the wait
// then goes on with what remains of its time.
struct MessageSource {
    bool (*hasNewInput)(uint32_t threadId, uint32_t wakeMask);
    bool (*hasSentMessage)(uint32_t threadId);
    void (*serveSentMessages)();
    void (*markInputSeen)(uint32_t threadId);
    // Milliseconds until input of these categories comes by itself (a timer), or kInfinite. Under the lock.
    uint32_t (*untilTimer)(uint32_t threadId, uint32_t wakeMask);
};
void SetMessageSource(const MessageSource& source);

}  // namespace tdkp
