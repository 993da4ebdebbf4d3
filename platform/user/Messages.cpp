// Posting, sending, taking and dispatching messages.
#include <algorithm>

#include "platform/user/Input.h"
#include "platform/user/MessageQueue.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

enum class Look { kPeek, kTake, kWaitAndTake };

bool CheckFilter(const DispatcherGuard& guard, const MessageFilter& filter) {
    const bool known = filter.window == nullptr || filter.window == kThreadMessages ||
                       FindWindowState(guard, filter.window) != nullptr;
    if (!known) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return known;
}

// 1: a message, 0: none, -1: the filter names no window.
int LookForMessage(MSG* message, const MessageFilter& filter, Look look) {
    const uint32_t thread = CurrentThreadId();
    const bool remove = look != Look::kPeek;
    QueuedMessage found;
    for (;;) {
        {
            DispatcherGuard guard(DispatcherLock());
            QueueOf(guard, thread);
        }
        ServeSentCalls();
        DispatcherGuard guard(DispatcherLock());
        if (!CheckFilter(guard, filter)) return -1;
        MessageQueue& queue = QueueOf(guard, thread);
        const DWORD now = GetTickCount();
        if (TakeMessage(guard, queue, filter, remove, now, &found)) {
            if (remove) NoteTaken(queue, found);
            *message = found.message;
            break;
        }
        if (look != Look::kWaitAndTake) return 0;
        auto ready = [&] {
            QueuedMessage unused;
            return !queue.sent.empty() || TakeMessage(guard, queue, filter, false, GetTickCount(), &unused);
        };
        WaitUntilReady(guard, ready, UntilTimer(queue, now));
    }
    if (remove) AskForCursor(*message);
    return 1;
}

bool PostTo(DispatcherGuard& guard, uint32_t thread, const MSG& message) {
    MessageQueue* queue = FindQueue(guard, thread);
    if (queue == nullptr) {
        SetLastError(ERROR_INVALID_THREAD_ID);
        return false;
    }
    QueuedMessage queued;
    queued.message = message;
    queued.message.pt = queue->lastPoint;
    if (PostToQueue(guard, *queue, queued)) return true;
    SetLastError(ERROR_NOT_ENOUGH_QUOTA);
    return false;
}

}  // namespace
}  // namespace tdkp

using tdkp::CurrentThreadId;
using tdkp::DispatcherGuard;
using tdkp::DispatcherLock;
using tdkp::MessageFilter;
using tdkp::MessageQueue;

TDKP_API BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (window == nullptr) return PostThreadMessageA(CurrentThreadId(), message, wParam, lParam);
    const DWORD now = GetTickCount();
    DispatcherGuard guard(DispatcherLock());
    const tdkp::Window* state = tdkp::FindWindowState(guard, window);
    if (state == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    return tdkp::PostTo(guard, state->thread, MSG{window, message, wParam, lParam, now, {0, 0}});
}

TDKP_API BOOL PostThreadMessageA(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam) {
    const DWORD now = GetTickCount();
    DispatcherGuard guard(DispatcherLock());
    return tdkp::PostTo(guard, threadId, MSG{nullptr, message, wParam, lParam, now, {0, 0}});
}

TDKP_API VOID PostQuitMessage(INT exitCode) {
    const uint32_t thread = CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    MessageQueue& queue = tdkp::QueueOf(guard, thread);
    queue.quit = true;
    queue.quitCode = exitCode;
    tdkp::NoteInput(guard, queue, QS_POSTMESSAGE | QS_ALLPOSTMESSAGE);
}

TDKP_API LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return tdkp::RunOnOwner(window, [=] { return tdkp::CallProcedure(window, message, wParam, lParam); });
}

TDKP_API LRESULT SendDlgItemMessageA(HWND parent, INT id, UINT message, WPARAM wParam, LPARAM lParam) {
    return SendMessageA(GetDlgItem(parent, id), message, wParam, lParam);
}

TDKP_API BOOL GetMessageA(MSG* message, HWND window, UINT first, UINT last) {
    if (message == nullptr) return -1;
    const int found = tdkp::LookForMessage(message, MessageFilter{window, first, last}, tdkp::Look::kWaitAndTake);
    return found < 0 ? -1 : message->message != WM_QUIT;
}

TDKP_API BOOL PeekMessageA(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    if (message == nullptr) return FALSE;
    const tdkp::Look look = (remove & PM_REMOVE) != 0 ? tdkp::Look::kTake : tdkp::Look::kPeek;
    return tdkp::LookForMessage(message, MessageFilter{window, first, last}, look) > 0;
}

TDKP_API BOOL TranslateMessage(const MSG* message) {
    const bool system = message != nullptr && message->message == WM_SYSKEYDOWN;
    if (message == nullptr || (message->message != WM_KEYDOWN && !system)) return FALSE;
    const uint32_t thread = CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    MessageQueue* queue = tdkp::FindQueue(guard, thread);
    if (queue == nullptr || queue->lastText == 0 || queue->lastKey != message->wParam) return TRUE;
    MSG character = *message;
    character.message = system ? WM_SYSCHAR : WM_CHAR;
    character.wParam = queue->lastText;
    queue->lastText = 0;
    tdkp::PostTo(guard, thread, character);
    return TRUE;
}

TDKP_API LRESULT DispatchMessageA(const MSG* message) {
    if (message == nullptr) return 0;
    if (message->message == WM_TIMER && message->lParam != 0) {
        const auto function = reinterpret_cast<TIMERPROC>(message->lParam);
        function(message->hwnd, WM_TIMER, message->wParam, GetTickCount());
        return 0;
    }
    uint32_t owner = 0;
    {
        DispatcherGuard guard(DispatcherLock());
        if (const tdkp::Window* state = tdkp::FindWindowState(guard, message->hwnd)) owner = state->thread;
    }
    if (owner != CurrentThreadId()) return 0;
    return tdkp::CallProcedure(message->hwnd, message->message, message->wParam, message->lParam);
}

TDKP_API LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return procedure != nullptr ? procedure(window, message, wParam, lParam) : 0;
}

TDKP_API LONG GetMessageTime() {
    const uint32_t thread = CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    const MessageQueue* queue = tdkp::FindQueue(guard, thread);
    return queue != nullptr ? static_cast<LONG>(queue->lastTime) : 0;
}
