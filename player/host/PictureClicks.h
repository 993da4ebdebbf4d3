// Hears from a view of clicks on its picture, which lies in a window of the add-on's, and hands them to the player's.
#pragma once

#include <tdkviz/viz.h>
#include <windows.h>

#include "player/host/ComObject.h"

namespace tdkplay {

// Views keep it uncounted: it ends after them, and before the window.
class PictureClicks final : public ComObject<IMPAClickReceiver> {
public:
    // `message` is posted to `window` for each click, since views report on a thread of the add-on's: with the click's
    // time, as GetMessageTime gives it, and its place in the picture.
    PictureClicks(HWND window, UINT message) : window_(window), message_(message) {}

    HRESULT QueryInterface(const GUID& id, void** out) override {
        return GiveInterface(id, out, {{kIID_IUnknown, this}});
    }
    HRESULT ViewClicked(uint32_t x, uint32_t y, uint32_t) override {
        PostMessageA(window_, message_, static_cast<DWORD>(GetMessageTime()),
                     MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)));
        return S_OK;
    }

private:
    const HWND window_;
    const UINT message_;
};

}  // namespace tdkplay
