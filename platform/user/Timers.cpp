// Timers of windows and threads.
#include <algorithm>

#include "platform/user/MessageQueue.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

constexpr UINT kLeastInterval = 10;

auto FindTimer(MessageQueue& queue, HWND window, UINT_PTR id) {
    return std::find_if(queue.timers.begin(), queue.timers.end(),
                        [&](const UserTimer& timer) { return timer.window == window && timer.id == id; });
}

// A timer without a window gets a number of its own.
UINT_PTR FreeId(MessageQueue& queue) {
    UINT_PTR id = 1;
    while (FindTimer(queue, nullptr, id) != queue.timers.end()) ++id;
    return id;
}

MessageQueue* QueueFor(const DispatcherGuard& guard, HWND window, uint32_t thread) {
    if (window == nullptr) return &QueueOf(guard, thread);
    const Window* state = FindWindowState(guard, window);
    if (state == nullptr) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return state != nullptr ? FindQueue(guard, state->thread) : nullptr;
}

}  // namespace
}  // namespace tdkp

using tdkp::DispatcherGuard;
using tdkp::DispatcherLock;
using tdkp::MessageQueue;
using tdkp::UserTimer;

TDKP_API UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC function) {
    const uint32_t thread = tdkp::CurrentThreadId();
    const DWORD now = GetTickCount();
    DispatcherGuard guard(DispatcherLock());
    MessageQueue* queue = tdkp::QueueFor(guard, window, thread);
    if (queue == nullptr) return 0;
    const auto present = tdkp::FindTimer(*queue, window, id);
    if (window == nullptr && present == queue->timers.end()) id = tdkp::FreeId(*queue);
    UserTimer timer = {window, id, std::max(milliseconds, tdkp::kLeastInterval), 0, function};
    timer.due = now + timer.interval;
    if (present != queue->timers.end())
        *present = timer;
    else
        queue->timers.push_back(timer);
    queue->lastLook = now;
    tdkp::SyncMessageFd(guard, *queue);
    const uint32_t owner = queue->thread;
    guard.unlock();
    // Waits that are under way look at their timers again after they have served something.
    if (owner != thread) tdkp::PostWork(owner, [] {});
    return window != nullptr && id == 0 ? 1 : id;
}

TDKP_API BOOL KillTimer(HWND window, UINT_PTR id) {
    const uint32_t thread = tdkp::CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    MessageQueue* queue = tdkp::QueueFor(guard, window, thread);
    if (queue == nullptr) return FALSE;
    const auto found = tdkp::FindTimer(*queue, window, id);
    if (found == queue->timers.end()) return FALSE;
    queue->timers.erase(found);
    tdkp::SyncMessageFd(guard, *queue);
    return TRUE;
}
