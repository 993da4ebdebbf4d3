#include "platform/user/SentCalls.h"

#include <algorithm>

#include "platform/user/MessageQueue.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

std::shared_ptr<SentCall> HandOver(DispatcherGuard& guard, uint32_t thread, std::function<LRESULT()> work) {
    MessageQueue* queue = FindQueue(guard, thread);
    if (queue == nullptr) return nullptr;
    auto call = std::make_shared<SentCall>();
    call->work = std::move(work);
    queue->sent.push_back(call);
    NoteInput(guard, *queue, QS_SENDMESSAGE);
    return call;
}

}  // namespace

bool RunOnThread(uint32_t thread, std::function<LRESULT()> work, LRESULT* result) {
    *result = 0;
    const uint32_t self = CurrentThreadId();
    if (thread == self) {
        *result = work();
        return true;
    }
    DispatcherGuard guard(DispatcherLock());
    const std::shared_ptr<SentCall> call = HandOver(guard, thread, std::move(work));
    if (!call) return false;
    auto ready = [&] {
        const MessageQueue* own = FindQueue(guard, self);
        return call->done || (own != nullptr && !own->sent.empty());
    };
    while (!call->done) {
        WaitUntilReady(guard, ready, kInfinite);
        if (call->done) break;
        guard.unlock();
        ServeSentCalls();
        guard.lock();
    }
    *result = call->result;
    return !call->failed;
}

LRESULT RunOnOwner(HWND window, std::function<LRESULT()> work) {
    uint32_t thread = 0;
    {
        DispatcherGuard guard(DispatcherLock());
        if (const Window* state = FindWindowState(guard, window)) thread = state->thread;
    }
    LRESULT result = 0;
    if (thread == 0 || !RunOnThread(thread, std::move(work), &result)) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return result;
}

void PostWork(uint32_t thread, std::function<void()> work) {
    DispatcherGuard guard(DispatcherLock());
    HandOver(guard, thread, [work = std::move(work)] {
        work();
        return LRESULT{0};
    });
}

void ServeSentCalls() {
    const uint32_t self = CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    for (;;) {
        MessageQueue* queue = FindQueue(guard, self);
        if (queue == nullptr || queue->sent.empty()) return;
        const std::shared_ptr<SentCall> call = queue->sent.front();
        queue->sent.pop_front();
        queue->serving.push_back(call);
        if (queue->sent.empty()) queue->changed &= ~static_cast<uint32_t>(QS_SENDMESSAGE);
        SyncMessageFd(guard, *queue);
        guard.unlock();
        const LRESULT result = call->work();
        guard.lock();
        queue = FindQueue(guard, self);
        if (queue != nullptr) std::erase(queue->serving, call);
        call->result = result;
        call->done = true;
        WakeWaiters(guard);
    }
}

LRESULT CallProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    WNDPROC procedure = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        if (const Window* state = FindWindowState(guard, window)) procedure = state->procedure;
    }
    return procedure != nullptr ? procedure(window, message, wParam, lParam) : 0;
}

}  // namespace tdkp
