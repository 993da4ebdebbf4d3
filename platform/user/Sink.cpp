#include "platform/user/Sink.h"

#include "platform/kernel/Immortal.h"
#include "platform/user/DroppedFiles.h"
#include "platform/user/Focus.h"
#include "platform/user/Input.h"
#include "platform/user/MessageQueue.h"
#include "platform/user/MouseLeave.h"
#include "platform/user/Paint.h"
#include "platform/user/Picture.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowDestroy.h"
#include "platform/user/WindowPosition.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

uint32_t ThreadOf(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    return state != nullptr ? state->thread : 0;
}

// From a place in the display's window to one in the client area.
POINT InClient(WindowId window, POINT point) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, HandleOf(window));
    const LONG edge = state != nullptr ? state->edge : 0;
    return POINT{point.x - edge, point.y - edge};
}

class UserSink final : public DisplaySink {
public:
    void OnMouse(WindowId window, uint32_t message, WPARAM keys, POINT point, POINT screen, uint32_t time) override {
        QueueMouse(HandleOf(window), message, keys, InClient(window, point), &screen, time);
    }

    void OnWheel(WindowId window, int delta, WPARAM keys, POINT point, POINT screen, uint32_t time) override {
        const WPARAM both = MAKEWPARAM(LOWORD(keys), static_cast<WORD>(delta));
        QueueMouse(HandleOf(window), WM_MOUSEWHEEL, both, InClient(window, point), &screen, time);
    }

    void OnKey(WindowId window, bool down, uint32_t virtualKey, uint32_t text, bool altDown, uint32_t time) override {
        QueueKey(HandleOf(window), KeyStroke{down, virtualKey, text, altDown, time});
    }

    void OnFocus(WindowId window, bool gained) override {
        const HWND handle = HandleOf(window);
        PostWork(ThreadOf(handle), [handle, gained] { gained ? Activate(handle) : Deactivate(handle); });
    }

    void OnPointerLeft(WindowId window, uint32_t time) override { NoteLeave(HandleOf(window), time); }

    bool AcceptsFiles(WindowId window, POINT screen) override { return tdkp::AcceptsFiles(HandleOf(window), screen); }

    void OnFilesDropped(WindowId window, POINT screen, std::vector<std::string> paths) override {
        DropFiles(HandleOf(window), screen, std::move(paths));
    }

    void OnCloseRequest(WindowId window) override { PostMessageA(HandleOf(window), WM_CLOSE, 0, 0); }

    void OnIconified(WindowId window, bool iconified) override {
        const HWND handle = HandleOf(window);
        PostWork(ThreadOf(handle), [handle, iconified] { AnnounceIconified(handle, iconified); });
    }

    // Reports that come faster than the thread takes them are merged.
    void OnMovedOrSized(WindowId window, int x, int y, int width, int height) override {
        const HWND handle = HandleOf(window);
        uint32_t thread = 0;
        {
            DispatcherGuard guard(DispatcherLock());
            Window* state = FindWindowState(guard, handle);
            if (state == nullptr) return;
            state->displayRect = RECT{x, y, x + width, y + height};
            if (state->displayRectPending) return;
            state->displayRectPending = true;
            thread = state->thread;
        }
        PostWork(thread, [handle] { TakeDisplayRect(handle); });
    }

    void OnExposed(WindowId window, const RECT& rect) override {
        const uint32_t thread = CurrentThreadId();
        DispatcherGuard guard(DispatcherLock());
        Window* state = FindWindowState(guard, HandleOf(window));
        if (state == nullptr) return;
        const RECT former = state->picture.exposed;
        UnionRect(&state->picture.exposed, &former, &rect);
        if (!TryHoldPicture(guard, *state, thread)) return;
        RECT part = rect;
        OffsetRect(&part, -state->edge, -state->edge);
        if (state->picture.raster.topRow == nullptr) InvalidateState(guard, *state, part, true);
        LetGoPicture(guard, *state);
    }

    void OnDestroyed(WindowId window) override {
        const HWND handle = HandleOf(window);
        PostWork(ThreadOf(handle), [handle] { DestroyOnOwner(handle); });
    }
};

struct SinkHolder {
    UserSink sink;
};

}  // namespace

DisplaySink& TheSink() {
    return Immortal<SinkHolder>().sink;
}

}  // namespace tdkp
