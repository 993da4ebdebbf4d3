#include "platform/user/WindowDestroy.h"

#include "platform/user/DisplayUse.h"
#include "platform/user/Focus.h"
#include "platform/user/MessageQueue.h"
#include "platform/user/Picture.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

struct Related {
    std::vector<HWND> children;
    std::vector<HWND> owned;
    uint32_t thread = 0;
};

Related RelatedTo(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    Related related;
    if (const Window* state = FindWindowState(guard, window)) {
        related.children = state->children;
        related.thread = state->thread;
    }
    ForEachWindow(guard, [&](const Window& other) {
        if (other.owner == window) related.owned.push_back(other.handle);
    });
    return related;
}

bool BeginDestruction(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    Window* state = FindWindowState(guard, window);
    if (state == nullptr || state->destroying) return false;
    state->destroying = true;
    return true;
}

// The end of the window itself; its children have gone.
void TakeAway(HWND window) {
    const uint32_t thread = CurrentThreadId();
    DisplayUse display;
    TerminationDeferral deferral;
    {
        DispatcherGuard guard(DispatcherLock());
        Window* state = HoldPicture(guard, window, thread);
        if (state == nullptr) return;
        DropHeldPicture(guard, *state);
        if (MessageQueue* queue = FindQueue(guard, state->thread)) ForgetWindowInQueue(guard, *queue, window);
        ForgetActive(guard, window);
        RemoveWindow(guard, window);
    }
    display->DestroyWindow(IdOf(window));
}

// First part: all learn that they go, the outer ones first. Windows of other threads get the message there.
void SendDestroy(HWND window) {
    SendMessageA(window, WM_DESTROY, 0, 0);
    for (const HWND child : RelatedTo(window).children) {
        if (BeginDestruction(child)) SendDestroy(child);
    }
}

// Second part: the inner ones go first.
void FreeTree(HWND window) {
    for (const HWND child : RelatedTo(window).children) {
        LRESULT done = 0;
        const uint32_t thread = RelatedTo(child).thread;
        const bool ran = RunOnThread(
            thread, [child] { return FreeTree(child), LRESULT{1}; }, &done);
        if (!ran) ForgetWindowTree(child);
    }
    LeaveWindow(window);
    CallProcedure(window, WM_NCDESTROY, 0, 0);
    TakeAway(window);
}

void HideOnDisplay(HWND window) {
    Display* display = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        Window* state = FindWindowState(guard, window);
        if (state == nullptr || (state->style & WS_VISIBLE) == 0) return;
        state->style &= ~WS_VISIBLE;
        display = state->display;
    }
    display->Show(IdOf(window), false, false);
}

}  // namespace

bool DestroyOnOwner(HWND window) {
    if (!BeginDestruction(window)) return false;
    for (const HWND owned : RelatedTo(window).owned)
        RunOnOwner(owned, [owned] { return LRESULT{DestroyOnOwner(owned)}; });
    LeaveWindow(window);
    HideOnDisplay(window);
    SendDestroy(window);
    FreeTree(window);
    return true;
}

void ForgetWindowTree(HWND window) {
    const Related related = RelatedTo(window);
    for (const HWND child : related.children) {
        const uint32_t thread = RelatedTo(child).thread;
        bool lives = false;
        {
            DispatcherGuard guard(DispatcherLock());
            lives = FindQueue(guard, thread) != nullptr;
            if (Window* state = FindWindowState(guard, child); state != nullptr && lives) state->parent = nullptr;
        }
        if (lives)
            PostWork(thread, [child] { DestroyOnOwner(child); });
        else
            ForgetWindowTree(child);
    }
    TakeAway(window);
}

}  // namespace tdkp

TDKP_API BOOL DestroyWindow(HWND window) {
    const uint32_t thread = tdkp::CurrentThreadId();
    {
        tdkp::DispatcherGuard guard(tdkp::DispatcherLock());
        const tdkp::Window* state = tdkp::FindWindowState(guard, window);
        if (state == nullptr || state->thread != thread) {
            SetLastError(state == nullptr ? ERROR_INVALID_WINDOW_HANDLE : ERROR_ACCESS_DENIED);
            return FALSE;
        }
    }
    return tdkp::DestroyOnOwner(window);
}
