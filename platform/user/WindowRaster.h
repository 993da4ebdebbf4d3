// What device contexts need of windows: the picture behind a window's client area. Declared by the
// window room, used by the drawing room.
#pragma once

#include <windef.h>

#include "platform/gdi/Raster.h"

namespace tdkp {

// Holds a window's picture still while somebody draws on it. Between Lock and Unlock no other thread
// resizes, shows or destroys the picture. `clip` is the part that may be drawn, in client coordinates:
// the client area without visible child windows when the window has WS_CLIPCHILDREN (as up to
// kMaxClip rectangles), else the whole client area.
class WindowRasterLock {
public:
    static constexpr int kMaxClip = 64;

    // A window that doesn't exist or was never given a picture (zero size) leaves `raster.topRow` null.
    explicit WindowRasterLock(HWND window);
    // Sends what was marked as damaged to the display.
    ~WindowRasterLock();
    WindowRasterLock(const WindowRasterLock&) = delete;
    WindowRasterLock& operator=(const WindowRasterLock&) = delete;

    void Damage(const RECT& rect);  // client coordinates; several calls are merged into their hull

    Raster raster;
    RECT clip[kMaxClip] = {};
    int clipCount = 0;

private:
    HWND window_;
    void* state_ = nullptr;
    RECT damage_ = {0, 0, 0, 0};
};

// Tells the window room that a device context of this window was taken or given back. The picture of a
// CS_OWNDC window lives while its context is held; a window without picture is never painted by the layer.
void WindowContextTaken(HWND window);
void WindowContextReturned(HWND window);

// Where the client area lay on the screen when the program last asked for that, or now if it never did: what
// the program says in screen coordinates is meant from there. Asks the display for nothing that was told before.
POINT ScreenOriginTold(HWND window);

// The pixel format of the display (of the desktop window): depth 24 and 32 give kRgb32, 16 kRgb565,
// 15 kRgb555, 8 kIndexed8.
PixelFormat DisplayPixelFormat();
SIZE DisplaySize();

}  // namespace tdkp
