// Keeps drawing on the screen inside of one window.
#pragma once

#include <ddraw.h>

#include <atomic>

#include "platform/ddraw/ComObject.h"

namespace tdkp {

inline constexpr GUID kIDirectDrawClipperId = {
    0x6C14DB85, 0xA733, 0x11CE, {0xA5, 0x21, 0x00, 0x20, 0xAF, 0x0B, 0xE5, 0x60}};

// While it has a window it counts as a device context of it, so that the window keeps its picture.
class ClipperObject final : public ComObject<IDirectDrawClipper, kIDirectDrawClipperId> {
public:
    HRESULT SetHWnd(DWORD flags, HWND window) override;

    HRESULT GetClipList(RECT*, void*, DWORD*) override { return DDERR_UNSUPPORTED; }
    HRESULT GetHWnd(HWND*) override { return DDERR_UNSUPPORTED; }
    HRESULT Initialize(IDirectDraw*, DWORD) override { return DDERR_ALREADYINITIALIZED; }
    HRESULT IsClipListChanged(BOOL*) override { return DDERR_UNSUPPORTED; }
    HRESULT SetClipList(void*, DWORD) override { return DDERR_UNSUPPORTED; }

    HWND Window() const { return window_.load(std::memory_order_relaxed); }  // null before SetHWnd

private:
    ~ClipperObject() override;

    std::atomic<HWND> window_{nullptr};
};

}  // namespace tdkp
