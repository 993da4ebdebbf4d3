#include <memory>
#include <vector>

#include <pthread.h>

#include "platform/include/winbase.h"
#include "platform/kernel/HandleTable.h"
#include "platform/kernel/Immortal.h"
#include "platform/kernel/Sanitizers.h"
#include "platform/kernel/Termination.h"
#include "platform/kernel/ThreadRecord.h"

namespace tdkp {
namespace {

// The handle's side of a thread. The C library wants every thread joined or detached once, but for one
// that was terminated: it never came to its end there, so its stack stays, and with it whatever others
// may still point to in it.
class ThreadObject : public WaitableObject {
public:
    explicit ThreadObject(std::shared_ptr<ThreadRecord> record) : record_(std::move(record)) {}

    ~ThreadObject() override {
        if (joinState_ == JoinState::kOpen) {
            pthread_detach(native_);
        }
    }

    bool IsSignalled() const override { return record_->Ended; }
    void AfterWait() override;
    bool Start(const pthread_attr_t* attributes);
    // For a thread that doesn't come to its end in the C library.
    void GiveUpJoin(DispatcherGuard&) {
        joinState_ = JoinState::kDone;
        TellStackStays(native_);
    }
    const std::shared_ptr<ThreadRecord>& Record() const { return record_; }

private:
    enum class JoinState { kDone, kOpen };

    const std::shared_ptr<ThreadRecord> record_;
    pthread_t native_{};
    JoinState joinState_ = JoinState::kDone;  // guarded by the dispatcher's lock
};

// Records of threads that could not be brought to an end: they still use them.
struct LingeringThreads {
    std::vector<std::shared_ptr<ThreadRecord>> Records;
};

void FinishCallingThread(ThreadRecord& record, uint32_t exitCode) {
    BeginDeferral();  // never ended: from here on the thread comes to its end by itself
    RunThreadEndHooks(record.Id);
    currentThread.Record = nullptr;
    DispatcherGuard guard(DispatcherLock());
    if (record.Ended) {
        guard.unlock();
        EndCallingThread();
    }
    EndThreadRecord(guard, record, record.Terminating ? record.TerminationCode : exitCode);
}

void* ThreadMain(void* argument) {
    auto& record = *static_cast<ThreadRecord*>(argument);
    PrepareForTermination(record);
    FinishCallingThread(record, record.Entry(record.Argument));
    return nullptr;
}

bool ThreadObject::Start(const pthread_attr_t* attributes) {
    if (pthread_create(&native_, attributes, ThreadMain, record_.get()) != 0) {
        return false;
    }
    DispatcherGuard guard(DispatcherLock());
    joinState_ = JoinState::kOpen;
    return true;
}

// Whoever saw the thread's end also finds that the process has one thread less.
void ThreadObject::AfterWait() {
    {
        DispatcherGuard guard(DispatcherLock());
        if (joinState_ != JoinState::kOpen) {
            return;
        }
        joinState_ = JoinState::kDone;
    }
    if (AwaitKernelExit(record_->KernelId.load(std::memory_order_relaxed))) {
        pthread_join(native_, nullptr);
    } else {
        pthread_detach(native_);
    }
}

void TerminateCallingThread(DispatcherGuard& guard, ThreadObject& thread, uint32_t exitCode) {
    ThreadRecord& record = *thread.Record();
    record.Terminating = true;
    record.TerminationCode = exitCode;
    thread.GiveUpJoin(guard);
    guard.unlock();
    FinishCallingThread(record, exitCode);
    EndCallingThread();
}

void TerminateOtherThread(DispatcherGuard& guard, ThreadObject& thread, uint32_t exitCode) {
    const std::shared_ptr<ThreadRecord> record = thread.Record();
    record->Terminating = true;
    record->TerminationCode = exitCode;
    guard.unlock();
    const bool stopped = StopThread(*record);
    guard.lock();
    if (record->Ended) {
        return;
    }
    thread.GiveUpJoin(guard);
    if (!stopped) {
        Immortal<LingeringThreads>().Records.push_back(record);
    }
    guard.unlock();
    RunThreadEndHooks(record->Id);
    guard.lock();
    if (!record->Ended) {
        EndThreadRecord(guard, *record, exitCode);
    }
}

bool GetUsualAttributes(pthread_attr_t& attributes, SIZE_T stackSize) {
    if (pthread_attr_init(&attributes) != 0) {
        return false;
    }
    SIZE_T usual = 0;
    if (pthread_attr_getstacksize(&attributes, &usual) == 0 && stackSize > usual) {
        pthread_attr_setstacksize(&attributes, stackSize);
    }
    return true;
}

HANDLE StartThread(std::shared_ptr<ThreadRecord> record, SIZE_T stackSize) {
    const auto thread = std::make_shared<ThreadObject>(record);
    const HANDLE handle = OpenHandle(thread);
    pthread_attr_t attributes;
    if (handle != nullptr && GetUsualAttributes(attributes, stackSize)) {
        const bool started = thread->Start(&attributes);
        pthread_attr_destroy(&attributes);
        if (started) {
            return handle;
        }
    }
    ReleaseHandle(handle);
    DispatcherGuard guard(DispatcherLock());
    EndThreadRecord(guard, *record, 0);
    return nullptr;
}

}  // namespace
}  // namespace tdkp

HANDLE CreateThread(LPSECURITY_ATTRIBUTES, SIZE_T stackSize, LPTHREAD_START_ROUTINE entry, LPVOID argument, DWORD flags,
                    LPDWORD threadId) {
    if (entry == nullptr || (flags & ~STACK_SIZE_PARAM_IS_A_RESERVATION) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const auto record = tdkp::AddThreadRecord();
    record->Entry = entry;
    record->Argument = argument;
    if (threadId != nullptr) {
        *threadId = record->Id;
    }
    const HANDLE handle = tdkp::StartThread(record, stackSize);
    if (handle == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return handle;
}

DWORD GetCurrentThreadId() {
    return tdkp::CurrentThreadId();
}

BOOL GetExitCodeThread(HANDLE thread, LPDWORD exitCode) {
    tdkp::DispatcherGuard guard(tdkp::DispatcherLock());
    const auto object = tdkp::FindObjectOf<tdkp::ThreadObject>(guard, thread);
    if (object == nullptr || exitCode == nullptr) {
        SetLastError(object == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *exitCode = object->Record()->ExitCode;
    return TRUE;
}

BOOL TerminateThread(HANDLE thread, DWORD exitCode) {
    std::shared_ptr<tdkp::ThreadObject> object;
    tdkp::DispatcherGuard guard(tdkp::DispatcherLock());
    object = tdkp::FindObjectOf<tdkp::ThreadObject>(guard, thread);
    if (object == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    tdkp::ThreadRecord& record = *object->Record();
    if (record.Ended) {
        return TRUE;
    }
    if (record.Terminating) {
        auto hasEnded = [&record] { return record.Ended; };
        tdkp::WaitUntilReady(guard, hasEnded, tdkp::kInfinite);
    } else if (&record == tdkp::currentThread.Record) {
        // This frame is never left, so it must not own the object; the handle does.
        tdkp::ThreadObject& self = *object;
        object.reset();
        tdkp::TerminateCallingThread(guard, self, exitCode);
    } else {
        tdkp::TerminateOtherThread(guard, *object, exitCode);
    }
    return TRUE;
}
