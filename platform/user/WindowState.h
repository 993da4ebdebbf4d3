// What the layer knows of each window. Invariants of the window room:
//  1. The window table, every field of Window (but the pixels of its picture) and every message queue are
//     guarded by the dispatcher's lock. Functions that want it held take the guard as an argument.
//  2. The lock is never held across a window procedure, a call of the display or a drawing function.
//     After such a call a window is looked up again by its handle.
//  3. A Window is removed by its own thread, by DestroyWindow, or for a thread that has ended by
//     ForgetThread. In both cases only while nobody holds its picture.
//  4. Who holds a picture (holder, depth) may use its pixels and the display's picture calls without the
//     lock, and knows that the window stays. A thread holds pictures only inside drawing functions.
//  5. While a window exists the display is open.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/display/Display.h"
#include "platform/gdi/Raster.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {

struct WindowClass {
    std::string name;  // as registered
    WNDCLASSA info = {};
    ATOM atom = 0;
    int32_t windows = 0;
    bool builtIn = false;  // every process has it, and keeps it
};

struct WindowPicture {
    Raster raster;  // topRow null: there is none
    uint32_t holder = 0;
    int32_t depth = 0;
    RECT exposed = {0, 0, 0, 0};  // asked for by the display while somebody held the picture
};

struct Window {
    // Fixed from creation on, but that a parent which goes with its thread is taken off.
    HWND handle = nullptr;
    Display* display = nullptr;
    std::shared_ptr<WindowClass> windowClass;
    uint32_t thread = 0;
    HWND parent = nullptr;         // of a child inside another window of the layer
    HWND foreignParent = nullptr;  // of a child inside a window that the layer didn't make
    HWND owner = nullptr;          // of a top-level window; may be one that the layer didn't make
    LONG edge = 0;                 // width of the sunken frame that the layer draws around a child's client area

    WNDPROC procedure = nullptr;
    HINSTANCE instance = nullptr;
    DWORD style = 0;
    DWORD exStyle = 0;
    LONG_PTR id = 0;
    LONG_PTR userData = 0;
    std::vector<uint8_t> extra;
    std::string title;
    std::vector<HWND> children;    // the topmost first
    RECT bounds = {0, 0, 0, 0};    // in the parent's client area; of a top-level window on the screen
    RECT toldRect = {0, 0, 0, 0};  // of a root in a foreign parent: its place on the screen, as last told
    bool destroying = false;
    bool fullScreen = false;

    // Painting. What needs paint is kept as one rectangle.
    RECT update = {0, 0, 0, 0};
    bool erase = false;
    RECT paintRect = {0, 0, 0, 0};  // what BeginPaint or an erasure is about
    WindowPicture picture;
    int32_t contexts = 0;       // taken by the program
    int32_t layerContexts = 0;  // taken by the layer's own painting
    bool hadContext = false;

    // Input.
    uint32_t cursor = 0;              // shape on the display, 0: hidden
    bool wantsLeave = false;          // WM_MOUSELEAVE, once
    HWND lastFocus = nullptr;         // of a root: had the focus when the root lost it
    RECT displayRect = {0, 0, 0, 0};  // of a top level: what the display reported last
    bool displayRectPending = false;

    bool OwnContext() const { return (windowClass->info.style & CS_OWNDC) != 0; }
    // The program paints this window without the layer: it has an own context and gave it back.
    bool PaintsItself() const { return OwnContext() && hadContext && contexts == 0; }
    bool MayHavePicture() const { return !PaintsItself() || layerContexts > 0; }
    bool TopLevel() const { return parent == nullptr && foreignParent == nullptr; }
    LONG Width() const { return bounds.right - bounds.left; }
    LONG Height() const { return bounds.bottom - bounds.top; }
    RECT Client() const { return RECT{0, 0, std::max(Width() - 2 * edge, 0), std::max(Height() - 2 * edge, 0)}; }
    // Its siblings show on top of it, whatever the order.
    bool Backdrop() const { return !TopLevel() && (exStyle & WS_EX_TRANSPARENT) != 0; }
};

inline WindowId IdOf(HWND window) {
    return static_cast<WindowId>(reinterpret_cast<uintptr_t>(window));
}
inline HWND HandleOf(WindowId id) {
    return reinterpret_cast<HWND>(static_cast<uintptr_t>(id));
}

}  // namespace tdkp
