// Where windows are seen. One abstract class, one folder for each implementation, one list that
// chooses: an X server (x11/) if DISPLAY names one and TDKVIZ_DISPLAY isn't "memory", else memory (memory/).
#pragma once

#include <windef.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/gdi/Raster.h"

namespace tdkp {

using WindowId = uint32_t;

// What the display reports. Calls come on the display's own thread (x11), or on the thread that feeds
// input (memory), without the dispatcher's lock. Coordinates are client coordinates of the window.
class DisplaySink {
public:
    // `screen` is the same place on the screen.
    virtual void OnMouse(WindowId window, uint32_t message, WPARAM keys, POINT point, POINT screen, uint32_t time) = 0;
    virtual void OnWheel(WindowId window, int delta, WPARAM keys, POINT point, POINT screen, uint32_t time) = 0;
    // `virtualKey` is a VK_ number; `text` is the character for WM_CHAR or 0.
    virtual void OnKey(WindowId window, bool down, uint32_t virtualKey, uint32_t text, bool altDown, uint32_t time) = 0;
    virtual void OnFocus(WindowId window, bool gained) = 0;
    // The pointer went to another window, of whatever program.
    virtual void OnPointerLeft(WindowId window, uint32_t time) = 0;
    // May files be dropped at this place of the screen, inside the top-level window?
    virtual bool AcceptsFiles(WindowId window, POINT screen) = 0;
    virtual void OnFilesDropped(WindowId window, POINT screen, std::vector<std::string> paths) = 0;
    // The window manager asks, or a foreign owner has gone.
    virtual void OnCloseRequest(WindowId window) = 0;
    virtual void OnMovedOrSized(WindowId window, int x, int y, int width, int height) = 0;  // top-level only
    virtual void OnIconified(WindowId window, bool iconified) = 0;                          // by the window manager
    virtual void OnExposed(WindowId window, const RECT& rect) = 0;                          // server lost these pixels
    virtual void OnDestroyed(WindowId window) = 0;  // by its foreign parent, or the server

protected:
    ~DisplaySink() = default;
};

struct DisplayWindowInfo {
    WindowId parent = 0;  // 0: top level; may be a window that this layer didn't make
    int x = 0, y = 0, width = 1, height = 1;
    bool topLevel = true;
    bool resizable = true;
    bool framed = true;  // top level: a window manager may put a frame around it
    bool menu = false;   // top level, but not a window manager's business: a popup menu
    WindowId owner = 0;  // of a top-level window: the one that it belongs to and stays above, if any
    std::string className;
    std::string title;
};

class Display {
public:
    virtual ~Display() = default;

    virtual PixelFormat Format() const = 0;
    virtual SIZE ScreenSize() const = 0;
    // 256 entries 0x00RRGGBB for an indexed display, else null.
    virtual const uint32_t* Palette() const = 0;

    // 0 on failure. The window is not shown yet.
    virtual WindowId CreateWindow(const DisplayWindowInfo& info) = 0;
    virtual void DestroyWindow(WindowId window) = 0;
    virtual void Move(WindowId window, int x, int y, int width, int height) = 0;
    virtual void Show(WindowId window, bool visible, bool activate) = 0;
    virtual void Raise(WindowId window) = 0;
    virtual void SetTitle(WindowId window, const std::string& title) = 0;
    virtual void SetFullScreen(WindowId window, bool on) = 0;
    virtual void SetAlwaysOnTop(WindowId window, bool on) = 0;
    virtual void SetFocus(WindowId window) = 0;
    virtual void SetCapture(WindowId window, bool on) = 0;
    // Mouse and keyboard of the whole display come to this window, which must be shown, until that is taken back or
    // the window goes. False if another program has them now.
    virtual bool GrabInput(WindowId window) = 0;
    virtual void ReleaseInput() = 0;
    virtual void SetCursorShape(WindowId window, uint32_t shape) = 0;  // IDC_ number, 0 hides it

    // Where the pointer is on the screen. False, and nothing written, for a display that has none of its own.
    virtual bool GetPointer(POINT* point) const = 0;
    // Holds the screen saver off until that is taken back or the display closes.
    virtual void KeepAwake(bool on) = 0;

    // Does a window of this id exist that some other client made?
    virtual bool IsForeign(WindowId window) const = 0;
    // Screen position and size of any window's client area, a foreign one included. False if there is none.
    virtual bool GetScreenRect(WindowId window, RECT* rect) const = 0;

    // Memory for the picture of a window, shared with the server where it serves that. The memory stays
    // the same until the next call for that window; it is given back with the window.
    virtual bool MakePicture(WindowId window, int width, int height, Raster* raster) = 0;
    virtual void DropPicture(WindowId window) = 0;
    // Sends this part of the window's picture to the screen, and returns when the picture's memory may
    // be written again.
    virtual void PutPicture(WindowId window, const RECT& rect) = 0;
};

// The process's display, made on first use for `sink`. Never null: memory is always there.
Display& TheDisplay(DisplaySink& sink);
// Ends the connection and the display's thread; called when the last window has gone.
void CloseDisplay();
// "x11" or "memory", of the display in use or that would be used.
const char* DisplayName();

}  // namespace tdkp
