#include "src/render/VizWindowProc.h"

#include <vector>

#include "src/render/VizWindow.h"
#include "src/support/RefPtr.h"

namespace tdkviz {

// What each message does to the window object; each gives the result of the message.
struct VizWindowMessages {
    static LRESULT Paint(CVizWindow& object, HWND window, WPARAM wParam, LPARAM lParam) {
        object.OnPaint();
        return DefWindowProcA(window, WM_PAINT, wParam, lParam);
    }
    static LRESULT Close(CVizWindow& object, HWND, WPARAM wParam, LPARAM lParam) {
        if (!object.DeferDuringFrame(WM_CLOSE, wParam, lParam)) object.Close();
        return 0;
    }
    // Not by Destroy, which leaves no object behind for this.
    static LRESULT Gone(CVizWindow& object, HWND window, WPARAM wParam, LPARAM lParam) {
        object.OnGone(window);
        return DefWindowProcA(window, WM_NCDESTROY, wParam, lParam);
    }
    static LRESULT LeftButton(CVizWindow& object, HWND, WPARAM wParam, LPARAM lParam) {
        if (!object.DeferDuringFrame(WM_LBUTTONUP, wParam, lParam))
            object.OnLeftButton(LOWORD(lParam), HIWORD(lParam), static_cast<uint32_t>(wParam));
        return 0;
    }
    static LRESULT RightButton(CVizWindow& object, HWND, WPARAM wParam, LPARAM lParam) {
        if (!object.DeferDuringFrame(WM_RBUTTONUP, wParam, lParam))
            object.OnRightButton(LOWORD(lParam), HIWORD(lParam), static_cast<uint32_t>(wParam));
        return 0;
    }
    static LRESULT Resize(CVizWindow& object, HWND, WPARAM wParam, LPARAM lParam) {
        if (!object.DeferDuringFrame(kMessageResize, wParam, lParam)) object.Resize(LOWORD(wParam), HIWORD(wParam));
        return 0;
    }
    static LRESULT DrawsFrames(CVizWindow& object, HWND, WPARAM wParam, LPARAM lParam) {
        if (!object.DeferDuringFrame(kMessageDrawsFrames, wParam, lParam)) object.OnDrawsFramesChanged(lParam != 0);
        return 0;
    }
    static LRESULT Unload(CVizWindow& object, HWND, WPARAM wParam, LPARAM lParam) {
        if (!object.DeferDuringFrame(kMessageUnload, wParam, lParam))
            object.OnUnload(reinterpret_cast<CVizPlugin*>(wParam));
        return 0;
    }
};

LRESULT CALLBACK VizWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* object = reinterpret_cast<CVizWindow*>(GetWindowLongPtrA(window, 0));
    if (message == WM_CREATE) return 0;
    if (!object) return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
        case WM_PAINT:
            return VizWindowMessages::Paint(*object, window, wParam, lParam);
        case WM_CLOSE:
            return VizWindowMessages::Close(*object, window, wParam, lParam);
        case WM_NCDESTROY:
            return VizWindowMessages::Gone(*object, window, wParam, lParam);
        case WM_LBUTTONUP:
            return VizWindowMessages::LeftButton(*object, window, wParam, lParam);
        case WM_RBUTTONUP:
            return VizWindowMessages::RightButton(*object, window, wParam, lParam);
        case kMessageResize:
            return VizWindowMessages::Resize(*object, window, wParam, lParam);
        case kMessageDrawsFrames:
            return VizWindowMessages::DrawsFrames(*object, window, wParam, lParam);
        case kMessageUnload:
            return VizWindowMessages::Unload(*object, window, wParam, lParam);
        default:
            return DefWindowProcA(window, message, wParam, lParam);
    }
}

void CVizWindow::OnPaint() {
    if (Shown && !Playing) Present(false);
}

void CVizWindow::OnLeftButton(uint32_t x, uint32_t y, uint32_t flags) {
    if (IVizClickReceiver* target = ClickTarget) target->OnLeftClick(x, y, flags);
    TellReceivers(ClickReceivers, x, y, flags);
}

void CVizWindow::OnRightButton(uint32_t x, uint32_t y, uint32_t flags) {
    if (IVizRightClickReceiver* target = RightClickTarget) target->OnRightClick(x, y);
    TellReceivers(RightClickReceivers, x, y, flags);
}

void CVizWindow::OnUnload(CVizPlugin* plugin) {
    PluginUnloader* unloader = unloader_;
    if (plugin && unloader) unloader->UnloadPlugin(plugin);
}

HRESULT CVizWindow::AddClickReceiver(IUnknown* receiver) {
    const MutexLock lock(&receiverLock_);
    ClickReceivers.Set(reinterpret_cast<uintptr_t>(receiver), 0);
    return S_OK;
}

HRESULT CVizWindow::AddRightClickReceiver(IUnknown* receiver) {
    const MutexLock lock(&receiverLock_);
    RightClickReceivers.Set(reinterpret_cast<uintptr_t>(receiver), 0);
    return S_OK;
}

HRESULT CVizWindow::RemoveClickReceiver(IUnknown* receiver) {
    const MutexLock lock(&receiverLock_);
    return ClickReceivers.Remove(reinterpret_cast<uintptr_t>(receiver)) ? S_OK : E_FAIL;
}

HRESULT CVizWindow::RemoveRightClickReceiver(IUnknown* receiver) {
    const MutexLock lock(&receiverLock_);
    return RightClickReceivers.Remove(reinterpret_cast<uintptr_t>(receiver)) ? S_OK : E_FAIL;
}

// Without the lock during a call, so a receiver may add and remove. Each gets a reference for the call, and
// one that was removed meanwhile isn't called.
void CVizWindow::TellReceivers(const CNQMapPtrToPtr& receivers, uint32_t x, uint32_t y, uint32_t flags) {
    std::vector<uintptr_t> keys;
    {
        const MutexLock lock(&receiverLock_);
        intptr_t position = receivers.GetStartPosition();
        uintptr_t key = 0, value = 0;
        while (position != 0) {
            receivers.GetNext(position, key, value);
            if (key != 0) keys.push_back(key);
        }
    }
    for (const uintptr_t key : keys) {
        RefPtr<IMPAClickReceiver> receiver;
        {
            const MutexLock lock(&receiverLock_);
            uintptr_t value = 0;
            if (receivers.Lookup(key, value)) receiver = RefPtr(reinterpret_cast<IMPAClickReceiver*>(key));
        }
        if (receiver) receiver->ViewClicked(x, y, flags);
    }
}

}  // namespace tdkviz
