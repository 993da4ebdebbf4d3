#include "platform/user/Focus.h"

#include "platform/user/MessageQueue.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

HWND activeWindow = nullptr;  // of the whole process; guarded by the dispatcher's lock

bool IsSelfOrInside(const DispatcherGuard& guard, HWND outer, HWND window) {
    return window != nullptr && (window == outer || IsInside(guard, outer, window));
}

// Moves the thread's focus and tells both windows. Gives the former focus.
HWND MoveFocus(uint32_t thread, HWND window) {
    HWND former = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        MessageQueue* queue = FindQueue(guard, thread);
        if (queue == nullptr || queue->focus == window) return window;
        former = queue->focus;
        queue->focus = window;
    }
    if (former != nullptr) CallProcedure(former, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
    if (window != nullptr && GetFocus() == window)
        CallProcedure(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(former), 0);
    return former;
}

HWND MoveCapture(uint32_t thread, HWND window) {
    HWND former = nullptr;
    Display* formerDisplay = nullptr;
    Display* display = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        MessageQueue* queue = FindQueue(guard, thread);
        if (queue == nullptr) return nullptr;
        const Window* state = FindWindowState(guard, window);
        if (window != nullptr && (state == nullptr || state->thread != thread)) return nullptr;
        former = queue->capture;
        if (former == window) return former;
        queue->capture = window;
        display = state != nullptr ? state->display : nullptr;
        const Window* formerState = FindWindowState(guard, former);
        formerDisplay = formerState != nullptr ? formerState->display : nullptr;
    }
    if (formerDisplay != nullptr) formerDisplay->SetCapture(IdOf(former), false);
    if (display != nullptr) display->SetCapture(IdOf(window), true);
    if (former != nullptr) CallProcedure(former, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(window));
    return former;
}

}  // namespace

void Activate(HWND window) {
    const uint32_t thread = CurrentThreadId();
    HWND former = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr || state->destroying || activeWindow == window) return;
        former = activeWindow;
    }
    Deactivate(former);  // of this thread
    HWND other = nullptr;
    uint32_t otherThread = 0;
    {
        DispatcherGuard guard(DispatcherLock());
        MessageQueue* queue = FindQueue(guard, thread);
        const Window* state = FindWindowState(guard, window);
        if (queue == nullptr || state == nullptr || state->destroying) return;
        if (const Window* otherState = FindWindowState(guard, activeWindow)) {
            other = activeWindow;
            otherThread = otherState->thread;
        }
        activeWindow = window;
        queue->active = window;
    }
    if (otherThread != 0 && otherThread != thread) PostWork(otherThread, [other] { Deactivate(other); });
    CallProcedure(window, WM_ACTIVATE, WA_ACTIVE, reinterpret_cast<LPARAM>(former));
    HWND focus = window;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        const MessageQueue* queue = FindQueue(guard, thread);
        if (state == nullptr || queue == nullptr || IsSelfOrInside(guard, window, queue->focus)) return;
        if (FindWindowState(guard, state->lastFocus) != nullptr) focus = state->lastFocus;
    }
    MoveFocus(thread, focus);
}

void Deactivate(HWND window) {
    const uint32_t thread = CurrentThreadId();
    bool hasFocus = false;
    {
        DispatcherGuard guard(DispatcherLock());
        MessageQueue* queue = FindQueue(guard, thread);
        Window* state = FindWindowState(guard, window);
        if (queue == nullptr || state == nullptr || queue->active != window) return;
        queue->active = nullptr;
        if (activeWindow == window) activeWindow = nullptr;
        hasFocus = IsSelfOrInside(guard, window, queue->focus);
        if (hasFocus) state->lastFocus = queue->focus;
    }
    CallProcedure(window, WM_ACTIVATE, WA_INACTIVE, 0);
    if (hasFocus) MoveFocus(thread, nullptr);
}

void FocusWhenActive(HWND control) {
    DispatcherGuard guard(DispatcherLock());
    if (Window* state = FindWindowState(guard, control)) RootOf(guard, *state)->lastFocus = control;
}

void LeaveWindow(HWND window) {
    const uint32_t thread = CurrentThreadId();
    HWND parent = nullptr;
    bool hasFocus = false;
    bool hasCapture = false;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        const MessageQueue* queue = FindQueue(guard, thread);
        if (state == nullptr || queue == nullptr) return;
        const Window* parentState = FindWindowState(guard, state->parent);
        if (parentState != nullptr && parentState->thread == thread && !parentState->destroying)
            parent = parentState->handle;
        hasFocus = IsSelfOrInside(guard, window, queue->focus);
        hasCapture = IsSelfOrInside(guard, window, queue->capture);
    }
    if (hasCapture) MoveCapture(thread, nullptr);
    if (hasFocus && parent != nullptr) MoveFocus(thread, parent);
    Deactivate(window);
    if (hasFocus && parent == nullptr && GetFocus() != nullptr) MoveFocus(thread, nullptr);
}

void ForgetActive(const DispatcherGuard&, HWND window) {
    if (activeWindow == window) activeWindow = nullptr;
}

}  // namespace tdkp

using tdkp::CurrentThreadId;
using tdkp::DispatcherGuard;
using tdkp::DispatcherLock;
using tdkp::FindWindowState;
using tdkp::MessageQueue;
using tdkp::Window;

TDKP_API HWND SetFocus(HWND window) {
    const uint32_t thread = CurrentThreadId();
    HWND root = nullptr;
    tdkp::Display* display = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        const MessageQueue* queue = tdkp::FindQueue(guard, thread);
        Window* state = FindWindowState(guard, window);
        const bool ours = window == nullptr || (state != nullptr && state->thread == thread);
        if (queue == nullptr || !ours) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return nullptr;
        }
        if (state != nullptr && (state->style & WS_DISABLED) != 0) return nullptr;
        Window* rootState = state != nullptr ? tdkp::RootOf(guard, *state) : nullptr;
        if (rootState != nullptr && tdkp::activeWindow != rootState->handle && tdkp::IsShown(guard, *state)) {
            rootState->lastFocus = window;
            root = rootState->handle;
            display = rootState->thread == thread ? rootState->display : nullptr;
        }
    }
    if (display != nullptr) {
        display->SetFocus(tdkp::IdOf(root));
        const HWND former = GetFocus();
        tdkp::Activate(root);
        tdkp::MoveFocus(thread, window);
        return former;
    }
    return tdkp::MoveFocus(thread, window);
}

TDKP_API HWND GetFocus() {
    const uint32_t thread = CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    const MessageQueue* queue = tdkp::FindQueue(guard, thread);
    return queue != nullptr ? queue->focus : nullptr;
}

TDKP_API HWND SetCapture(HWND window) {
    return tdkp::MoveCapture(CurrentThreadId(), window);
}

TDKP_API HWND GetCapture() {
    const uint32_t thread = CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    const MessageQueue* queue = tdkp::FindQueue(guard, thread);
    return queue != nullptr ? queue->capture : nullptr;
}

TDKP_API BOOL ReleaseCapture() {
    tdkp::MoveCapture(CurrentThreadId(), nullptr);
    return TRUE;
}

TDKP_API HWND GetForegroundWindow() {
    DispatcherGuard guard(DispatcherLock());
    return tdkp::activeWindow;
}

TDKP_API BOOL SetForegroundWindow(HWND window) {
    return tdkp::RunOnOwner(window, [window] {
               tdkp::Display* display = nullptr;
               {
                   DispatcherGuard guard(DispatcherLock());
                   const Window* state = FindWindowState(guard, window);
                   if (state == nullptr || !state->TopLevel() || !tdkp::IsShown(guard, *state)) return LRESULT{FALSE};
                   display = state->display;
               }
               display->Raise(tdkp::IdOf(window));
               display->SetFocus(tdkp::IdOf(window));
               tdkp::Activate(window);
               return LRESULT{TRUE};
           }) != 0;
}
