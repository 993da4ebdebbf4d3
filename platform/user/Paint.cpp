#include "platform/user/Paint.h"

#include "platform/user/MessageQueue.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

thread_local bool insideLayerPaint = false;

// Between construction and destruction a taken or returned context counts as the layer's.
class LayerPaint {
public:
    LayerPaint() : former_(insideLayerPaint) { insideLayerPaint = true; }
    ~LayerPaint() { insideLayerPaint = former_; }
    LayerPaint(const LayerPaint&) = delete;
    LayerPaint& operator=(const LayerPaint&) = delete;

private:
    bool former_;
};

HDC TakeContext(HWND window) {
    LayerPaint layer;
    return GetDC(window);
}

void ReturnContext(HWND window, HDC dc) {
    LayerPaint layer;
    ReleaseDC(window, dc);
}

// Lets the window erase `rect`; true if it did.
bool SendErase(HWND window, HDC dc, const RECT& rect) {
    {
        DispatcherGuard guard(DispatcherLock());
        Window* state = FindWindowState(guard, window);
        if (state == nullptr) return false;
        state->paintRect = rect;
    }
    return CallProcedure(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0) != 0;
}

}  // namespace

bool InsideLayerPaint() {
    return insideLayerPaint;
}

bool NeedsPaint(const DispatcherGuard& guard, const Window& window) {
    return !IsRectEmpty(&window.update) && !window.destroying && IsShown(guard, window);
}

void InvalidateState(DispatcherGuard& guard, Window& window, const RECT& rect, bool erase) {
    const RECT client = window.Client();
    RECT added;
    if (!IsShown(guard, window) || !IntersectRect(&added, &rect, &client)) return;
    const RECT former = window.update;
    UnionRect(&window.update, &former, &added);
    window.erase = window.erase || erase;
    if (MessageQueue* queue = FindQueue(guard, window.thread)) NoteInput(guard, *queue, QS_PAINT);
}

void InvalidateTree(DispatcherGuard& guard, HWND window) {
    for (const HWND handle : TreeOf(guard, window)) {
        Window* state = FindWindowState(guard, handle);
        InvalidateState(guard, *state, state->Client(), true);
    }
}

bool ErasePart(HWND window, const RECT& part) {
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr || state->destroying || IsRectEmpty(&part) || !IsShown(guard, *state) ||
            state->PaintsItself())
            return true;
    }
    const HDC dc = TakeContext(window);
    IntersectClipRect(dc, part.left, part.top, part.right, part.bottom);
    const bool erased = SendErase(window, dc, part);
    ReturnContext(window, dc);
    DispatcherGuard guard(DispatcherLock());
    if (Window* state = FindWindowState(guard, window)) state->paintRect = RECT{0, 0, 0, 0};
    return erased;
}

void EraseNow(HWND window) {
    RECT rect;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr || !NeedsPaint(guard, *state) || !state->erase) return;
        rect = state->update;
    }
    if (!ErasePart(window, rect)) return;
    DispatcherGuard guard(DispatcherLock());
    if (Window* state = FindWindowState(guard, window)) state->erase = false;
}

LRESULT EraseByDefault(HWND window, HDC dc) {
    HBRUSH brush = nullptr;
    RECT rect;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr) return 0;
        brush = state->windowClass->info.hbrBackground;
        rect = IsRectEmpty(&state->paintRect) ? state->Client() : state->paintRect;
    }
    if (brush == nullptr) return 0;
    FillRect(dc, &rect, brush);
    return 1;
}

LRESULT PaintByDefault(HWND window) {
    PAINTSTRUCT paint;
    BeginPaint(window, &paint);
    EndPaint(window, &paint);
    return 0;
}

}  // namespace tdkp

using tdkp::DispatcherGuard;
using tdkp::DispatcherLock;
using tdkp::FindWindowState;
using tdkp::Window;

TDKP_API BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase) {
    DispatcherGuard guard(DispatcherLock());
    Window* state = FindWindowState(guard, window);
    if (state == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    tdkp::InvalidateState(guard, *state, rect != nullptr ? *rect : state->Client(), erase != FALSE);
    return TRUE;
}

TDKP_API BOOL GetUpdateRect(HWND window, RECT* rect, BOOL erase) {
    if (erase) tdkp::EraseNow(window);
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    const bool waits = state != nullptr && tdkp::NeedsPaint(guard, *state);
    if (rect != nullptr) *rect = waits ? state->update : RECT{0, 0, 0, 0};
    return waits;
}

TDKP_API BOOL UpdateWindow(HWND window) {
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr) return FALSE;
        if (!tdkp::NeedsPaint(guard, *state)) return TRUE;
    }
    SendMessageA(window, WM_PAINT, 0, 0);
    return TRUE;
}

TDKP_API HDC BeginPaint(HWND window, PAINTSTRUCT* paint) {
    if (paint == nullptr) return nullptr;
    *paint = PAINTSTRUCT{};
    bool erase = false;
    {
        DispatcherGuard guard(DispatcherLock());
        Window* state = FindWindowState(guard, window);
        if (state == nullptr) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return nullptr;
        }
        paint->rcPaint = state->update;
        erase = state->erase && !IsRectEmpty(&state->update);
        state->update = RECT{0, 0, 0, 0};
        state->erase = false;
        if (erase && state->PaintsItself()) erase = false;
        if (tdkp::MessageQueue* queue = tdkp::FindQueue(guard, state->thread)) tdkp::SyncMessageFd(guard, *queue);
    }
    paint->hdc = tdkp::TakeContext(window);
    const RECT& clip = paint->rcPaint;
    IntersectClipRect(paint->hdc, clip.left, clip.top, clip.right, clip.bottom);
    paint->fErase = erase && !tdkp::SendErase(window, paint->hdc, paint->rcPaint);
    return paint->hdc;
}

TDKP_API BOOL EndPaint(HWND window, const PAINTSTRUCT* paint) {
    if (paint == nullptr || paint->hdc == nullptr) return TRUE;
    tdkp::ReturnContext(window, paint->hdc);
    DispatcherGuard guard(DispatcherLock());
    if (Window* state = FindWindowState(guard, window)) state->paintRect = RECT{0, 0, 0, 0};
    return TRUE;
}
