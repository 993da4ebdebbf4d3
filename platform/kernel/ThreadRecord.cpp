#include "platform/kernel/ThreadRecord.h"

#include <unordered_map>
#include <utility>
#include <vector>

#include <pthread.h>

#include "platform/kernel/Counts.h"
#include "platform/kernel/HandleTable.h"
#include "platform/kernel/Immortal.h"
#include "platform/kernel/WaitList.h"

namespace tdkp {

constinit thread_local ThreadState currentThread;

namespace {

constexpr uint32_t kStillActive = 259;

// Behind a lock of its own, which is taken last: a thread's first use of the layer may come while it holds
// the dispatcher's.
struct ThreadRegister {
    LayerMutex Lock;
    std::unordered_map<uint32_t, std::shared_ptr<ThreadRecord>> Records;
    std::vector<ThreadEndHook> Hooks;
    uint32_t LastId = 0;
};

ThreadRegister& Register() {
    return Immortal<ThreadRegister>();
}

// Threads of the program that have used the layer end here; key destructors run after those of
// thread-local objects, which may still use it.
void EndForeignThread(void* value) {
    auto& record = *static_cast<ThreadRecord*>(value);
    RunThreadEndHooks(record.Id);
    currentThread.Record = nullptr;
    DispatcherGuard guard(DispatcherLock());
    EndThreadRecord(guard, record, 0);
}

struct ForeignThreadKey {
    ForeignThreadKey() { pthread_key_create(&Key, EndForeignThread); }
    pthread_key_t Key = 0;
};

std::shared_ptr<ThreadRecord> AddRecord(bool madeByLayer) {
    ThreadRegister& threads = Register();
    LayerGuard guard(threads.Lock);
    do {
        ++threads.LastId;
    } while (threads.LastId == 0 || threads.Records.count(threads.LastId) != 0);
    auto record = std::make_shared<ThreadRecord>(threads.LastId, madeByLayer);
    threads.Records.emplace(record->Id, record);
    return record;
}

std::shared_ptr<ThreadRecord> RemoveRecord(uint32_t id) {
    ThreadRegister& threads = Register();
    LayerGuard guard(threads.Lock);
    return std::move(threads.Records.extract(id).mapped());
}

}  // namespace

ThreadRecord::ThreadRecord(uint32_t id, bool madeByLayer)
    : Id(id), MadeByLayer(madeByLayer), Counted(madeByLayer), ExitCode(kStillActive) {
    sem_init(&Wake, 0, 0);
}

ThreadRecord::~ThreadRecord() {
    sem_destroy(&Wake);
}

ThreadRecord& CurrentRecord() {
    if (currentThread.Record == nullptr) {
        currentThread.Record = AddRecord(false).get();
        pthread_setspecific(Immortal<ForeignThreadKey>().Key, currentThread.Record);
    }
    return *currentThread.Record;
}

std::shared_ptr<ThreadRecord> AddThreadRecord() {
    DispatcherGuard guard(DispatcherLock());
    CountThread(+1);
    auto record = AddRecord(true);
    AddRunningThread(guard);
    return record;
}

void EndThreadRecord(DispatcherGuard& guard, ThreadRecord& record, uint32_t exitCode) {
    // Keeps the record until the waiters have looked at it.
    const std::shared_ptr<ThreadRecord> last = RemoveRecord(record.Id);
    const auto waitObjects = std::move(record.WaitObjects);
    ForgetWaits(guard, record);
    record.Ended = true;
    record.ExitCode = exitCode;
    if (record.MadeByLayer) {
        CountThread(-1);
    }
    WakeWaiters(guard);
    if (record.Counted) {
        record.Counted = false;
        RemoveRunningThread(guard);
    }
}

uint32_t CurrentThreadId() {
    return CurrentRecord().Id;
}

void AddThreadEndHook(ThreadEndHook hook) {
    LayerGuard guard(Register().Lock);
    Register().Hooks.push_back(hook);
}

void RunThreadEndHooks(uint32_t threadId) {
    std::vector<ThreadEndHook> hooks;
    {
        LayerGuard guard(Register().Lock);
        hooks = Register().Hooks;
    }
    for (ThreadEndHook hook : hooks) {
        hook(threadId);
    }
}

void MarkServiceThread() {
    ThreadRecord& record = CurrentRecord();
    DispatcherGuard guard(DispatcherLock());
    if (record.Counted) {
        record.Counted = false;
        RemoveRunningThread(guard);
    }
}

}  // namespace tdkp
