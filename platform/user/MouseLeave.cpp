#include "platform/user/MouseLeave.h"

#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

HWND hovered = nullptr;  // guarded by the dispatcher's lock

// Behind the mouse messages that came before.
void QueueLeave(DispatcherGuard& guard, Window& window, DWORD time) {
    window.wantsLeave = false;
    MessageQueue* queue = FindQueue(guard, window.thread);
    if (queue == nullptr || queue->input.size() >= kMaxPosted) return;
    QueuedMessage queued;
    queued.message = MSG{window.handle, WM_MOUSELEAVE, 0, 0, time, queue->lastPoint};
    queue->input.push_back(queued);
    NoteInput(guard, *queue, QS_MOUSEMOVE);
}

}  // namespace

void NoteHover(DispatcherGuard& guard, HWND window, DWORD time) {
    if (hovered == window) return;
    Window* former = FindWindowState(guard, hovered);
    hovered = window;
    if (former != nullptr && former->wantsLeave) QueueLeave(guard, *former, time);
}

void NoteLeave(HWND window, DWORD time) {
    DispatcherGuard guard(DispatcherLock());
    if (hovered != window) return;
    const Window* state = FindWindowState(guard, window);
    const MessageQueue* queue = state != nullptr ? FindQueue(guard, state->thread) : nullptr;
    // Who has the mouse has it wherever the pointer is.
    if (queue == nullptr || queue->capture != window) NoteHover(guard, nullptr, time);
}

}  // namespace tdkp

TDKP_API BOOL TrackMouseEvent(TRACKMOUSEEVENT* event) {
    const DWORD now = GetTickCount();
    if (event == nullptr || event->cbSize != sizeof(*event) || event->dwFlags != TME_LEAVE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    tdkp::DispatcherGuard guard(tdkp::DispatcherLock());
    tdkp::Window* window = tdkp::FindWindowState(guard, event->hwndTrack);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    window->wantsLeave = true;
    if (tdkp::hovered != window->handle) tdkp::QueueLeave(guard, *window, now);
    return TRUE;
}
