// KVAMutex: the lock of all rooms. MutexLock: the lock for a scope. Marks for Clang's thread-safety analysis.
#pragma once

#include <windows.h>

#include <tdkviz/com.h>

#if defined(__clang__)
#define TDKVIZ_THREAD_MARK(mark) __attribute__((mark))
#else
#define TDKVIZ_THREAD_MARK(mark)
#endif
#define TDKVIZ_CAPABILITY TDKVIZ_THREAD_MARK(capability("mutex"))
#define TDKVIZ_SCOPED_CAPABILITY TDKVIZ_THREAD_MARK(scoped_lockable)
#define TDKVIZ_GUARDED_BY(lock) TDKVIZ_THREAD_MARK(guarded_by(lock))
#define TDKVIZ_REQUIRES(...) TDKVIZ_THREAD_MARK(requires_capability(__VA_ARGS__))
#define TDKVIZ_ACQUIRE(...) TDKVIZ_THREAD_MARK(acquire_capability(__VA_ARGS__))
#define TDKVIZ_RELEASE(...) TDKVIZ_THREAD_MARK(release_capability(__VA_ARGS__))
#define TDKVIZ_TRY_ACQUIRE(...) TDKVIZ_THREAD_MARK(try_acquire_capability(__VA_ARGS__))
#define TDKVIZ_UNCHECKED TDKVIZ_THREAD_MARK(no_thread_safety_analysis)

namespace tdkviz {

// Recursive: the thread that holds it may lock it again and unlocks as often. [any]
class TDKVIZ_CAPABILITY KVAMutex {
public:
    virtual ~KVAMutex() = default;
    // S_OK.
    virtual HRESULT Lock() TDKVIZ_ACQUIRE() = 0;
    virtual HRESULT Unlock() TDKVIZ_RELEASE() = 0;
    // S_OK, or E_FAIL at once if another thread holds it.
    virtual HRESULT TryLock() TDKVIZ_TRY_ACQUIRE(false) = 0;
};

// One Win32 critical section.
class TDKVIZ_CAPABILITY KVAWinMutex : public KVAMutex {
public:
    KVAWinMutex();
    ~KVAWinMutex() override;
    KVAWinMutex(const KVAWinMutex&) = delete;
    KVAWinMutex& operator=(const KVAWinMutex&) = delete;

    HRESULT Lock() TDKVIZ_ACQUIRE() TDKVIZ_UNCHECKED override;
    HRESULT Unlock() TDKVIZ_RELEASE() TDKVIZ_UNCHECKED override;
    HRESULT TryLock() TDKVIZ_TRY_ACQUIRE(false) TDKVIZ_UNCHECKED override;

private:
    CRITICAL_SECTION section_;
};

// Makes a KVAWinMutex, the caller's to delete. S_OK, or E_OUTOFMEMORY with a null `mutex`.
HRESULT CreateInstanceMutex(KVAMutex** mutex);

// Holds `mutex` (null: nothing) for its own life.
class TDKVIZ_SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(KVAMutex* mutex) TDKVIZ_ACQUIRE(mutex) TDKVIZ_UNCHECKED : mutex_(mutex) {
        if (mutex_) mutex_->Lock();
    }
    ~MutexLock() TDKVIZ_RELEASE() TDKVIZ_UNCHECKED {
        if (mutex_) mutex_->Unlock();
    }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    KVAMutex* mutex_;
};

}  // namespace tdkviz
