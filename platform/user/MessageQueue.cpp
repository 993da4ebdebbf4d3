#include "platform/user/MessageQueue.h"

#include <shellapi.h>

#include <algorithm>

#include "platform/kernel/Immortal.h"
#include "platform/user/Paint.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

struct Queues : std::map<uint32_t, std::unique_ptr<MessageQueue>> {};

Queues& TheQueues() {
    return Immortal<Queues>();
}

bool IsDue(const UserTimer& timer, DWORD now) {
    return static_cast<int32_t>(now - timer.due) >= 0;
}

bool Matches(const DispatcherGuard& guard, const MessageFilter& filter, const MSG& message) {
    return filter.Takes(message.message) && filter.TakesWindow(guard, message.hwnd);
}

bool TakeFrom(const DispatcherGuard& guard, std::deque<QueuedMessage>& list, const MessageFilter& filter, bool remove,
              QueuedMessage* out) {
    const auto found = std::find_if(
        list.begin(), list.end(), [&](const QueuedMessage& queued) { return Matches(guard, filter, queued.message); });
    if (found == list.end()) return false;
    *out = *found;
    if (remove) list.erase(found);
    return true;
}

bool TakeQuit(MessageQueue& queue, bool remove, DWORD now, QueuedMessage* out) {
    if (!queue.quit) return false;
    out->message = MSG{nullptr, WM_QUIT, static_cast<WPARAM>(queue.quitCode), 0, now, queue.lastPoint};
    if (remove) queue.quit = false;
    return true;
}

// Stays until the window is validated; windows take turns.
bool TakePaint(const DispatcherGuard& guard, MessageQueue& queue, const MessageFilter& filter, bool remove, DWORD now,
               QueuedMessage* out) {
    if (!filter.Takes(WM_PAINT)) return false;
    HWND first = nullptr;
    HWND next = nullptr;
    ForEachWindow(guard, [&](Window& window) {
        if (window.thread != queue.thread || !NeedsPaint(guard, window) || !filter.TakesWindow(guard, window.handle))
            return;
        if (first == nullptr) first = window.handle;
        if (next == nullptr && IdOf(window.handle) > IdOf(queue.lastPainted)) next = window.handle;
    });
    const HWND chosen = next != nullptr ? next : first;
    if (chosen == nullptr) return false;
    if (remove) queue.lastPainted = chosen;
    out->message = MSG{chosen, WM_PAINT, 0, 0, now, queue.lastPoint};
    return true;
}

bool TakeTimer(const DispatcherGuard& guard, MessageQueue& queue, const MessageFilter& filter, bool remove, DWORD now,
               QueuedMessage* out) {
    if (!filter.Takes(WM_TIMER)) return false;
    UserTimer* chosen = nullptr;
    for (UserTimer& timer : queue.timers) {
        const bool earlier = chosen == nullptr || static_cast<int32_t>(timer.due - chosen->due) < 0;
        if (IsDue(timer, now) && filter.TakesWindow(guard, timer.window) && earlier) chosen = &timer;
    }
    if (chosen == nullptr) return false;
    out->message =
        MSG{chosen->window, WM_TIMER, chosen->id, reinterpret_cast<LPARAM>(chosen->function), now, queue.lastPoint};
    if (remove) chosen->due = now + chosen->interval;
    return true;
}

uint32_t WaitingWithoutTimers(const DispatcherGuard& guard, const MessageQueue& queue) {
    uint32_t waiting = queue.sent.empty() ? 0 : QS_SENDMESSAGE;
    if (!queue.posted.empty() || queue.quit) waiting |= QS_POSTMESSAGE | QS_ALLPOSTMESSAGE;
    for (const QueuedMessage& queued : queue.input) {
        const UINT number = queued.message.message;
        if (number >= WM_KEYFIRST && number <= WM_KEYLAST)
            waiting |= QS_KEY;
        else
            waiting |= number == WM_MOUSEMOVE ? QS_MOUSEMOVE : QS_MOUSEBUTTON;
    }
    ForEachWindow(guard, [&](Window& window) {
        if (window.thread == queue.thread && NeedsPaint(guard, window)) waiting |= QS_PAINT;
    });
    return waiting;
}

}  // namespace

bool MessageFilter::TakesWindow(const DispatcherGuard& guard, HWND of) const {
    if (window == nullptr || window == of) return true;
    return window == kThreadMessages ? of == nullptr : IsInside(guard, window, of);
}

MessageQueue& QueueOf(const DispatcherGuard& guard, uint32_t thread) {
    if (MessageQueue* queue = FindQueue(guard, thread)) return *queue;
    auto made = std::make_unique<MessageQueue>();
    made->thread = thread;
    return *(TheQueues()[thread] = std::move(made));
}

MessageQueue* FindQueue(const DispatcherGuard&, uint32_t thread) {
    Queues& queues = TheQueues();
    const auto found = queues.find(thread);
    return found == queues.end() ? nullptr : found->second.get();
}

void NoteInput(DispatcherGuard& guard, MessageQueue& queue, uint32_t categories) {
    queue.changed |= categories;
    SyncMessageFd(guard, queue);
    WakeWaiters(guard);
}

void SyncMessageFd(const DispatcherGuard& guard, MessageQueue& queue) {
    if (queue.fd.IsMade()) queue.fd.Set(WaitingWithoutTimers(guard, queue) != 0, UntilTimer(queue, queue.lastLook));
}

void NoteLook(MessageQueue& queue, const MessageFilter& filter) {
    uint32_t seen = QS_POSTMESSAGE | QS_SENDMESSAGE;
    if (filter.first == 0 && filter.last == 0) seen |= QS_ALLPOSTMESSAGE;
    if (filter.TakesAny(WM_KEYFIRST, WM_KEYLAST)) seen |= QS_KEY;
    if (filter.TakesAny(WM_MOUSEFIRST, WM_MOUSELAST)) seen |= QS_MOUSE;
    if (filter.Takes(WM_TIMER)) seen |= QS_TIMER;
    if (filter.Takes(WM_PAINT)) seen |= QS_PAINT;
    queue.changed &= ~seen;
}

uint32_t WaitingInput(const DispatcherGuard& guard, const MessageQueue& queue, DWORD now) {
    const uint32_t timers = UntilTimer(queue, now) == 0 ? QS_TIMER : 0;
    return WaitingWithoutTimers(guard, queue) | timers;
}

bool PostToQueue(DispatcherGuard& guard, MessageQueue& queue, const QueuedMessage& message) {
    if (queue.posted.size() >= kMaxPosted) return false;
    queue.posted.push_back(message);
    NoteInput(guard, queue, QS_POSTMESSAGE | QS_ALLPOSTMESSAGE);
    return true;
}

bool TakeMessage(DispatcherGuard& guard, MessageQueue& queue, const MessageFilter& filter, bool remove, DWORD now,
                 QueuedMessage* out) {
    const bool found = TakeFrom(guard, queue.posted, filter, remove, out) ||
                       TakeFrom(guard, queue.input, filter, remove, out) || TakeQuit(queue, remove, now, out) ||
                       TakePaint(guard, queue, filter, remove, now, out) ||
                       TakeTimer(guard, queue, filter, remove, now, out);
    queue.lastLook = now;
    NoteLook(queue, filter);
    SyncMessageFd(guard, queue);
    return found;
}

void ForgetWindowInQueue(DispatcherGuard& guard, MessageQueue& queue, HWND window) {
    const auto belongs = [window](const QueuedMessage& queued) { return queued.message.hwnd == window; };
    for (const QueuedMessage& queued : queue.posted)
        if (belongs(queued) && queued.message.message == WM_DROPFILES)
            DragFinish(reinterpret_cast<HDROP>(queued.message.wParam));
    std::erase_if(queue.posted, belongs);
    std::erase_if(queue.input, belongs);
    std::erase_if(queue.timers, [window](const UserTimer& timer) { return timer.window == window; });
    for (HWND* field : {&queue.active, &queue.focus, &queue.capture, &queue.cursorWindow, &queue.lastClickWindow}) {
        if (*field == window) *field = nullptr;
    }
    SyncMessageFd(guard, queue);
}

uint32_t UntilTimer(const MessageQueue& queue, DWORD now) {
    uint32_t least = kInfinite;
    for (const UserTimer& timer : queue.timers) least = std::min(least, IsDue(timer, now) ? 0 : timer.due - now);
    return least;
}

void EndQueue(DispatcherGuard& guard, uint32_t thread) {
    Queues& queues = TheQueues();
    const auto found = queues.find(thread);
    if (found == queues.end()) return;
    MessageQueue& queue = *found->second;
    for (const std::shared_ptr<SentCall>& call : queue.serving) call->failed = call->done = true;
    for (const std::shared_ptr<SentCall>& call : queue.sent) call->failed = call->done = true;
    queues.erase(found);
    WakeWaiters(guard);
}

}  // namespace tdkp
