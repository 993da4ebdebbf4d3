#include "platform/user/ThreadBinding.h"

#include "platform/user/ExecutionState.h"
#include "platform/user/MessageQueue.h"
#include "platform/user/Picture.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowDestroy.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

// The waits call these under the lock, with a guard of their own.
bool HasNewInput(uint32_t thread, uint32_t wakeMask) {
    DispatcherGuard held(DispatcherLock(), std::adopt_lock);
    bool has = false;
    if (const MessageQueue* queue = FindQueue(held, thread)) {
        // Nobody is told when a timer falls due: it counts as new until it's taken.
        const uint32_t news = (queue->changed | QS_TIMER) & wakeMask;
        has = news != 0 && (news & WaitingInput(held, *queue, GetTickCount())) != 0;
    }
    held.release();
    return has;
}

uint32_t UntilNextTimer(uint32_t thread, uint32_t wakeMask) {
    DispatcherGuard held(DispatcherLock(), std::adopt_lock);
    const MessageQueue* queue = (wakeMask & QS_TIMER) != 0 ? FindQueue(held, thread) : nullptr;
    const uint32_t until = queue != nullptr ? UntilTimer(*queue, GetTickCount()) : kInfinite;
    held.release();
    return until;
}

bool HasSentMessage(uint32_t thread) {
    DispatcherGuard held(DispatcherLock(), std::adopt_lock);
    const MessageQueue* queue = FindQueue(held, thread);
    const bool has = queue != nullptr && !queue->sent.empty();
    held.release();
    return has;
}

void MarkInputSeen(uint32_t thread) {
    DispatcherGuard held(DispatcherLock(), std::adopt_lock);
    if (MessageQueue* queue = FindQueue(held, thread)) queue->changed = 0;
    held.release();
}

// Waits of threads without a queue ask too; they find that nothing waits.
[[maybe_unused]] const bool kSourceSet = [] {
    SetMessageSource(MessageSource{HasNewInput, HasSentMessage, ServeSentCalls, MarkInputSeen, UntilNextTimer});
    AddThreadEndHook(ForgetThread);
    return true;
}();

}  // namespace

void ForgetThread(uint32_t thread) {
    std::vector<HWND> windows;
    {
        DispatcherGuard guard(DispatcherLock());
        ForEachWindow(guard, [&](Window& window) {
            ForgetHolds(window.picture, thread);
            if (window.thread == thread) windows.push_back(window.handle);
        });
        WakeWaiters(guard);
        EndQueue(guard, thread);
    }
    for (const HWND window : windows) ForgetWindowTree(window);
    ForgetExecutionState(thread);
}

}  // namespace tdkp
