// The layer's own switches: clock, the program's place, display, pictures of windows, input fed by a program. They have
// no counterpart on Windows; programs that run there too don't include this header.
#pragma once

#include "windef.h"

// Clock. The stepped clock must be asked for before anything of the layer is used. It stands still
// until TdkpAdvanceClock moves it; that call runs the waits that fall due in order of time and comes
// back when every thread that the layer made waits again. Milliseconds.
TDKP_API BOOL TdkpUseSteppedClock(void);
TDKP_API void TdkpAdvanceClock(DWORD milliseconds);
// Comes back when every thread that the layer made waits, without moving the clock.
TDKP_API void TdkpSettle(void);

// Modules. Where the program's file counts as being: from now on GetModuleFileNameA gives this absolute path for the
// program. Libraries are looked for beside the file itself all the same. Null or empty: as it is. Any thread.
TDKP_API void TdkpUseProgramPath(const char* path);

// Display. Must be asked for before the first window: the memory display with this size and depth
// (32, 16, 15 or 8). FALSE if a display is in use already.
TDKP_API BOOL TdkpUseMemoryDisplay(int width, int height, int depth);
// The memory display in use gets another depth, under the windows that stand: each shows what it showed until its
// size changes. FALSE if that display isn't in use, or for another depth. Any thread.
TDKP_API BOOL TdkpChangeDisplayDepth(int depth);
// "x11" or "memory".
TDKP_API const char* TdkpDisplayName(void);
// What a person would see of the window's client area and its children, covering aside: width x height
// pixels 0x00RRGGBB, top row first. FALSE if there is no such window or the buffer is too small.
// Any thread.
TDKP_API BOOL TdkpReadWindow(HWND window, DWORD* pixels, int capacity, int* width, int* height);

// TDKVIZ_DPI in the environment: how many pixels of the display make an inch, for dialogs and for fonts that are
// asked for in points. 96 if it isn't set.

// Input, as if it came from the display: client coordinates. Any thread.
TDKP_API void TdkpFeedMouse(HWND window, UINT message, WPARAM keys, int x, int y);
TDKP_API void TdkpFeedKey(HWND window, BOOL down, UINT virtualKey, UINT character);
TDKP_API void TdkpFeedClose(HWND window);
// Files dropped there. FALSE if nothing in the top-level window accepts files at that place.
TDKP_API BOOL TdkpFeedFiles(HWND window, int x, int y, const char* const* paths, int count);

// DirectDraw. The call with this number, counted from 1 and from here on, fails with this result and does nothing
// (CoInitialize, CoCreateInstance and each operation of the interfaces count, AddRef and Release don't); 0: none
// does. Gives how many calls there were since the last use of this switch.
TDKP_API DWORD TdkpFailDirectDraw(DWORD call, HRESULT result);
// Every surface that exists is lost until it is restored.
TDKP_API void TdkpLoseDirectDrawSurfaces(void);
// Each row of a memory surface made from now on is longer than it has to be.
TDKP_API void TdkpPadDirectDrawRows(DWORD bytes);

// For hosts with a message loop of their own: serves all that waits for the calling thread and gives
// the number served, never blocks; and a descriptor that is readable while something waits for it.
TDKP_API uint32_t TdkpDispatchMessages(void);
TDKP_API int TdkpMessageFd(void);

// For tests: how many handles, windows and GDI objects of the layer exist in this process.
struct TdkpCounts {
    int32_t handles;
    int32_t windows;
    int32_t gdiObjects;
    int32_t threads;     // made by CreateThread and not ended
    int32_t directDraw;  // DirectDraw objects of all kinds
};
TDKP_API void TdkpCount(struct TdkpCounts* counts);
