#include <algorithm>
#include <cstddef>
#include <utility>

#include <sched.h>

#include "platform/include/winbase.h"
#include "platform/include/winuser.h"
#include "platform/kernel/Clock.h"
#include "platform/kernel/HandleTable.h"
#include "platform/kernel/WaitList.h"

namespace tdkp {
namespace {

// Guarded by the dispatcher's lock.
constinit MessageSource messageSource{};
constinit bool hasMessageSource = false;

// A wait for any or all of some objects and, with a wake mask, for messages.
class ObjectWait {
public:
    enum Outcome : uint32_t { kObject, kInput, kSentMessage };

    ObjectWait(uint32_t count, bool waitAll, bool withMessages, uint32_t wakeMask)
        : count_(count), waitAll_(waitAll), withMessages_(withMessages), wakeMask_(wakeMask) {}

    ~ObjectWait() {
        TerminationDeferral whole;
        thread_.WaitObjects.resize(base_);
    }
    ObjectWait(const ObjectWait&) = delete;
    ObjectWait& operator=(const ObjectWait&) = delete;

    bool FindObjects(DispatcherGuard& guard, const HANDLE* handles) {
        for (uint32_t i = 0; i < count_; ++i) {
            auto object = FindObjectOf<WaitableObject>(guard, handles[i]);
            if (object == nullptr) {
                return false;
            }
            thread_.WaitObjects.push_back(std::move(object));
        }
        return true;
    }

    // The ready test.
    bool operator()() {
        if (withMessages_ && messageSource.hasSentMessage(thread_.Id)) {
            outcome_ = kSentMessage;
            return true;
        }
        if (waitAll_ ? TakeAll() : TakeFirst()) {
            return true;
        }
        if (withMessages_ && !waitAll_ && HasInput()) {
            messageSource.markInputSeen(thread_.Id);
            outcome_ = kInput;
            return true;
        }
        return false;
    }

    // WAIT_OBJECT_0 plus the index of the object, or `count` for messages. Without the lock.
    uint32_t Finish() {
        if (outcome_ == kInput) {
            return WAIT_OBJECT_0 + count_;
        }
        for (uint32_t i = waitAll_ ? 0 : first_; i < (waitAll_ ? count_ : first_ + 1); ++i) {
            Object(i).AfterWait();
        }
        return WAIT_OBJECT_0 + (waitAll_ ? 0 : first_);
    }

    Outcome Result() const { return outcome_; }

    // When a timer of the thread falls due that the wait is to end for. Under the lock.
    uint64_t NextTimer() const {
        const bool served = withMessages_ && !waitAll_;
        return served ? DeadlineAfter(messageSource.untilTimer(thread_.Id, wakeMask_)) : kNoDeadline;
    }

private:
    bool HasInput() const { return messageSource.hasNewInput(thread_.Id, wakeMask_); }
    WaitableObject& Object(uint32_t index) const { return *thread_.WaitObjects[base_ + index]; }

    bool TakeFirst() {
        for (uint32_t i = 0; i < count_; ++i) {
            if (Object(i).IsSignalled()) {
                Object(i).Consume();
                first_ = i;
                outcome_ = kObject;
                return true;
            }
        }
        return false;
    }

    // All at once or none; with messages the input is one of all.
    bool TakeAll() {
        for (uint32_t i = 0; i < count_; ++i) {
            if (!Object(i).IsSignalled()) {
                return false;
            }
        }
        if (withMessages_) {
            if (!HasInput()) {
                return false;
            }
            messageSource.markInputSeen(thread_.Id);
        }
        for (uint32_t i = 0; i < count_; ++i) {
            Object(i).Consume();
        }
        outcome_ = kObject;
        return true;
    }

    const uint32_t count_;
    const bool waitAll_;
    const bool withMessages_;
    const uint32_t wakeMask_;
    ThreadRecord& thread_ = CurrentRecord();
    const size_t base_ = thread_.WaitObjects.size();  // a message served in a wait may wait itself
    uint32_t first_ = 0;
    Outcome outcome_ = kObject;
};

uint32_t WaitForObjects(ObjectWait& wait, const HANDLE* handles, uint32_t milliseconds) {
    const ReadyTest test{[](void* argument) { return (*static_cast<ObjectWait*>(argument))(); }, &wait};
    const uint64_t deadline = milliseconds == 0 ? 0 : DeadlineAfter(milliseconds);
    DispatcherGuard guard(DispatcherLock());
    if (!wait.FindObjects(guard, handles)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    for (;;) {
        const uint64_t nextTimer = wait.NextTimer();
        if (!WaitReadyUntil(guard, test, std::min(deadline, nextTimer))) {
            if (nextTimer < deadline) {
                continue;
            }
            return WAIT_TIMEOUT;
        }
        const auto serve = messageSource.serveSentMessages;
        guard.unlock();
        if (wait.Result() != ObjectWait::kSentMessage) {
            return wait.Finish();
        }
        serve();
        guard.lock();
    }
}

bool HasMessageSource() {
    DispatcherGuard guard(DispatcherLock());
    return hasMessageSource;
}

bool CheckArguments(DWORD count, const HANDLE* objects, DWORD least, DWORD most) {
    if (count >= least && count <= most && (objects != nullptr || count == 0)) {
        return true;
    }
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

}  // namespace

void SetMessageSource(const MessageSource& source) {
    DispatcherGuard guard(DispatcherLock());
    messageSource = source;
    hasMessageSource = true;
}

}  // namespace tdkp

DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds) {
    tdkp::ObjectWait wait(1, false, false, 0);
    return tdkp::WaitForObjects(wait, &object, milliseconds);
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL waitAll, DWORD milliseconds) {
    if (!tdkp::CheckArguments(count, objects, 1, MAXIMUM_WAIT_OBJECTS)) {
        return WAIT_FAILED;
    }
    tdkp::ObjectWait wait(count, waitAll != FALSE, false, 0);
    return tdkp::WaitForObjects(wait, objects, milliseconds);
}

DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL waitAll, DWORD milliseconds, DWORD wakeMask) {
    if (!tdkp::CheckArguments(count, objects, 0, MAXIMUM_WAIT_OBJECTS - 1)) {
        return WAIT_FAILED;
    }
    tdkp::ObjectWait wait(count, waitAll != FALSE, tdkp::HasMessageSource(), wakeMask);
    return tdkp::WaitForObjects(wait, objects, milliseconds);
}

void Sleep(DWORD milliseconds) {
    if (milliseconds == 0) {
        sched_yield();
        return;
    }
    auto never = [] { return false; };
    tdkp::DispatcherGuard guard(tdkp::DispatcherLock());
    tdkp::WaitUntilReady(guard, never, milliseconds);
}
