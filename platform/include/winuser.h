// Windows, painting and input; messages, dialogs and menus are parts of their own. The rules that all share:
//  - A window belongs to the thread that made it; its procedure runs there and nowhere else.
//  - The window is its client area: borders and captions are the window manager's, outside of it.
//  - A parent that the layer didn't make is taken as a window of a foreign client of the display.
// Device contexts, drawing and text are declared here where Win32 does so, and served by the drawing room.
#pragma once

#include "windef.h"
#include "windlg.h"
#include "winmenu.h"
#include "winmsg.h"

struct WNDCLASSA {
    UINT style;
    WNDPROC lpfnWndProc;
    INT cbClsExtra;
    INT cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCSTR lpszMenuName;
    LPCSTR lpszClassName;
};
struct CREATESTRUCTA {
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    INT cy;
    INT cx;
    INT y;
    INT x;
    LONG style;
    LPCSTR lpszName;
    LPCSTR lpszClass;
    DWORD dwExStyle;
};
using LPCREATESTRUCTA = CREATESTRUCTA*;
struct PAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
    BOOL fRestore;
    BOOL fIncUpdate;
    BYTE rgbReserved[32];
};
inline LPSTR MAKEINTRESOURCEA(ULONG_PTR id) {
    return reinterpret_cast<LPSTR>(id & 0xFFFF);
}

// Errors of windows and messages.
#define ERROR_INVALID_WINDOW_HANDLE 1400u
#define ERROR_TLW_WITH_WSCHILD 1406u
#define ERROR_CANNOT_FIND_WND_CLASS 1407u
#define ERROR_CLASS_ALREADY_EXISTS 1410u
#define ERROR_CLASS_DOES_NOT_EXIST 1411u
#define ERROR_CLASS_HAS_WINDOWS 1412u
#define ERROR_INVALID_INDEX 1413u
#define ERROR_INVALID_THREAD_ID 1444u
#define ERROR_NOT_ENOUGH_QUOTA 1816u

// Class styles.
#define CS_VREDRAW 0x0001
#define CS_HREDRAW 0x0002
#define CS_DBLCLKS 0x0008
#define CS_OWNDC 0x0020
#define CS_SAVEBITS 0x0800
#define CS_BYTEALIGNCLIENT 0x1000
#define CS_BYTEALIGNWINDOW 0x2000

// Window styles.
#define WS_OVERLAPPED 0x00000000u
#define WS_POPUP 0x80000000u
#define WS_CHILD 0x40000000u
#define WS_MINIMIZE 0x20000000u
#define WS_VISIBLE 0x10000000u
#define WS_DISABLED 0x08000000u
#define WS_CLIPSIBLINGS 0x04000000u
#define WS_CLIPCHILDREN 0x02000000u
#define WS_MAXIMIZE 0x01000000u
#define WS_CAPTION 0x00C00000u
#define WS_BORDER 0x00800000u
#define WS_DLGFRAME 0x00400000u
#define WS_VSCROLL 0x00200000u
#define WS_HSCROLL 0x00100000u
#define WS_SYSMENU 0x00080000u
#define WS_THICKFRAME 0x00040000u
#define WS_GROUP 0x00020000u
#define WS_TABSTOP 0x00010000u
#define WS_MINIMIZEBOX 0x00020000u
#define WS_MAXIMIZEBOX 0x00010000u
#define WS_SIZEBOX WS_THICKFRAME
#define WS_OVERLAPPEDWINDOW (WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX)
#define WS_POPUPWINDOW (WS_POPUP | WS_BORDER | WS_SYSMENU)
#define WS_CHILDWINDOW WS_CHILD
#define WS_EX_DLGMODALFRAME 0x00000001u
#define WS_EX_NOPARENTNOTIFY 0x00000004u
#define WS_EX_TOPMOST 0x00000008u
#define WS_EX_ACCEPTFILES 0x00000010u
#define WS_EX_TRANSPARENT 0x00000020u
#define WS_EX_TOOLWINDOW 0x00000080u
#define WS_EX_WINDOWEDGE 0x00000100u
#define WS_EX_CLIENTEDGE 0x00000200u
#define WS_EX_CONTROLPARENT 0x00010000u
#define WS_EX_STATICEDGE 0x00020000u
#define WS_EX_APPWINDOW 0x00040000u

#define CW_USEDEFAULT (static_cast<INT>(0x80000000))
#define HWND_DESKTOP (reinterpret_cast<HWND>(static_cast<LONG_PTR>(0)))
#define HWND_TOP (reinterpret_cast<HWND>(static_cast<LONG_PTR>(0)))
#define HWND_BOTTOM (reinterpret_cast<HWND>(static_cast<LONG_PTR>(1)))
#define HWND_TOPMOST (reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1)))
#define HWND_NOTOPMOST (reinterpret_cast<HWND>(static_cast<LONG_PTR>(-2)))

// SetWindowPos.
#define SWP_NOSIZE 0x0001
#define SWP_NOMOVE 0x0002
#define SWP_NOZORDER 0x0004
#define SWP_NOREDRAW 0x0008
#define SWP_NOACTIVATE 0x0010
#define SWP_FRAMECHANGED 0x0020
#define SWP_SHOWWINDOW 0x0040
#define SWP_HIDEWINDOW 0x0080
#define SWP_NOCOPYBITS 0x0100
#define SWP_NOOWNERZORDER 0x0200

// ShowWindow.
#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_NORMAL 1
#define SW_SHOWMINIMIZED 2
#define SW_SHOWMAXIMIZED 3
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SW_MINIMIZE 6
#define SW_SHOWMINNOACTIVE 7
#define SW_SHOWNA 8
#define SW_RESTORE 9
#define SW_SHOWDEFAULT 10

// Indices into a window's words. Offsets of extra bytes count from 0.
#define GWLP_WNDPROC (-4)
#define GWLP_HINSTANCE (-6)
#define GWLP_HWNDPARENT (-8)
#define GWLP_ID (-12)
#define GWLP_USERDATA (-21)
#define GWL_ID (-12)
#define GWL_STYLE (-16)
#define GWL_EXSTYLE (-20)
#define GWL_USERDATA (-21)

// GetWindow.
#define GW_HWNDFIRST 0
#define GW_HWNDLAST 1
#define GW_HWNDNEXT 2
#define GW_HWNDPREV 3
#define GW_OWNER 4
#define GW_CHILD 5

// System colours and measures.
#define COLOR_SCROLLBAR 0
#define COLOR_BACKGROUND 1
#define COLOR_ACTIVECAPTION 2
#define COLOR_MENU 4
#define COLOR_WINDOW 5
#define COLOR_WINDOWFRAME 6
#define COLOR_MENUTEXT 7
#define COLOR_WINDOWTEXT 8
#define COLOR_CAPTIONTEXT 9
#define COLOR_HIGHLIGHT 13
#define COLOR_HIGHLIGHTTEXT 14
#define COLOR_BTNFACE 15
#define COLOR_BTNSHADOW 16
#define COLOR_GRAYTEXT 17
#define COLOR_BTNTEXT 18
#define COLOR_BTNHIGHLIGHT 20
#define COLOR_3DDKSHADOW 21
#define COLOR_3DLIGHT 22
#define COLOR_INFOTEXT 23
#define COLOR_INFOBK 24
#define COLOR_3DFACE COLOR_BTNFACE
#define COLOR_3DSHADOW COLOR_BTNSHADOW
#define COLOR_3DHIGHLIGHT COLOR_BTNHIGHLIGHT
#define SM_CXSCREEN 0
#define SM_CYSCREEN 1
#define SM_CYCAPTION 4
#define SM_CXBORDER 5
#define SM_CYBORDER 6
#define SM_MOUSEPRESENT 19
#define SM_CXDOUBLECLK 36
#define SM_CYDOUBLECLK 37
#define SM_DBCSENABLED 42
#define SM_CMOUSEBUTTONS 43
#define SM_CXEDGE 45
#define SM_CYEDGE 46
#define SM_REMOTESESSION 0x1000

// DrawTextA.
#define DT_TOP 0x00000000
#define DT_LEFT 0x00000000
#define DT_CENTER 0x00000001
#define DT_RIGHT 0x00000002
#define DT_VCENTER 0x00000004
#define DT_BOTTOM 0x00000008
#define DT_WORDBREAK 0x00000010
#define DT_SINGLELINE 0x00000020
#define DT_EXPANDTABS 0x00000040
#define DT_NOCLIP 0x00000100
#define DT_CALCRECT 0x00000400
#define DT_NOPREFIX 0x00000800
#define DT_END_ELLIPSIS 0x00008000

// Standard cursors.
#define IDC_ARROW MAKEINTRESOURCEA(32512)
#define IDC_IBEAM MAKEINTRESOURCEA(32513)
#define IDC_WAIT MAKEINTRESOURCEA(32514)
#define IDC_CROSS MAKEINTRESOURCEA(32515)
#define IDC_SIZENWSE MAKEINTRESOURCEA(32642)
#define IDC_SIZENESW MAKEINTRESOURCEA(32643)
#define IDC_SIZEWE MAKEINTRESOURCEA(32644)
#define IDC_SIZENS MAKEINTRESOURCEA(32645)
#define IDC_SIZEALL MAKEINTRESOURCEA(32646)
#define IDC_HAND MAKEINTRESOURCEA(32649)

// Window classes. Names are compared without regard to case; a class lives until it is unregistered,
// and that fails while a window of the class exists.
TDKP_API ATOM RegisterClassA(const WNDCLASSA* windowClass);
TDKP_API BOOL UnregisterClassA(LPCSTR className, HINSTANCE instance);
TDKP_API BOOL GetClassInfoA(HINSTANCE instance, LPCSTR className, WNDCLASSA* windowClass);

// Windows.
TDKP_API HWND CreateWindowExA(DWORD exStyle, LPCSTR className, LPCSTR title, DWORD style, INT x, INT y, INT width,
                              INT height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter);
inline HWND CreateWindowA(LPCSTR className, LPCSTR title, DWORD style, INT x, INT y, INT width, INT height, HWND parent,
                          HMENU menu, HINSTANCE instance, LPVOID parameter) {
    return CreateWindowExA(0, className, title, style, x, y, width, height, parent, menu, instance, parameter);
}
// On the window's own thread only.
TDKP_API BOOL DestroyWindow(HWND window);
// On a window of another thread these wait until that thread looks for messages.
TDKP_API BOOL ShowWindow(HWND window, INT command);
TDKP_API BOOL MoveWindow(HWND window, INT x, INT y, INT width, INT height, BOOL repaint);
// A window without WS_CAPTION and WS_THICKFRAME that is given the whole screen becomes a full-screen window.
TDKP_API BOOL SetWindowPos(HWND window, HWND after, INT x, INT y, INT width, INT height, UINT flags);
TDKP_API BOOL BringWindowToTop(HWND window);
TDKP_API BOOL SetForegroundWindow(HWND window);
TDKP_API HWND GetForegroundWindow(void);
TDKP_API BOOL EnableWindow(HWND window, BOOL enable);
TDKP_API BOOL IsWindow(HWND window);
TDKP_API BOOL IsWindowVisible(HWND window);
TDKP_API BOOL IsWindowEnabled(HWND window);
TDKP_API BOOL IsChild(HWND parent, HWND window);
TDKP_API HWND GetParent(HWND window);
TDKP_API HWND GetWindow(HWND window, UINT relation);
TDKP_API HWND GetDesktopWindow(void);
TDKP_API HWND GetDlgItem(HWND parent, INT id);
// The next window below `parent` (null: top level) behind `after` with this class and title; null text: any.
TDKP_API HWND FindWindowExA(HWND parent, HWND after, LPCSTR className, LPCSTR title);
TDKP_API INT GetDlgCtrlID(HWND window);
TDKP_API DWORD GetWindowThreadProcessId(HWND window, DWORD* process);
TDKP_API BOOL GetClientRect(HWND window, RECT* rect);
TDKP_API BOOL GetWindowRect(HWND window, RECT* rect);
// The window manager's frame is outside of the window: the rectangle comes back as it was.
TDKP_API BOOL AdjustWindowRect(RECT* rect, DWORD style, BOOL menu);
TDKP_API BOOL ClientToScreen(HWND window, POINT* point);
TDKP_API BOOL ScreenToClient(HWND window, POINT* point);
TDKP_API BOOL SetWindowTextA(HWND window, LPCSTR text);
TDKP_API INT GetWindowTextA(HWND window, LPSTR text, INT size);
TDKP_API INT GetWindowTextLengthA(HWND window);
TDKP_API BOOL SetDlgItemTextA(HWND parent, INT id, LPCSTR text);
TDKP_API LONG_PTR GetWindowLongPtrA(HWND window, INT index);
TDKP_API LONG_PTR SetWindowLongPtrA(HWND window, INT index, LONG_PTR value);
TDKP_API LONG GetWindowLongA(HWND window, INT index);
TDKP_API LONG SetWindowLongA(HWND window, INT index, LONG value);

// Painting.
TDKP_API BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase);
TDKP_API BOOL GetUpdateRect(HWND window, RECT* rect, BOOL erase);
TDKP_API BOOL UpdateWindow(HWND window);
TDKP_API HDC BeginPaint(HWND window, PAINTSTRUCT* paint);
TDKP_API BOOL EndPaint(HWND window, const PAINTSTRUCT* paint);
TDKP_API HDC GetDC(HWND window);
TDKP_API INT ReleaseDC(HWND window, HDC dc);
TDKP_API INT FillRect(HDC dc, const RECT* rect, HBRUSH brush);
TDKP_API INT FrameRect(HDC dc, const RECT* rect, HBRUSH brush);
TDKP_API INT DrawTextA(HDC dc, LPCSTR text, INT length, RECT* rect, UINT format);
TDKP_API DWORD GetSysColor(INT index);
TDKP_API HBRUSH GetSysColorBrush(INT index);  // never deleted

// Input.
TDKP_API HWND SetFocus(HWND window);
TDKP_API HWND GetFocus(void);
TDKP_API HWND SetCapture(HWND window);
TDKP_API HWND GetCapture(void);
TDKP_API BOOL ReleaseCapture(void);
TDKP_API SHORT GetKeyState(INT virtualKey);
// Also while the pointer is over another program's window.
TDKP_API BOOL GetCursorPos(POINT* point);
#define TME_LEAVE 0x00000002u
struct TRACKMOUSEEVENT {
    DWORD cbSize;
    DWORD dwFlags;
    HWND hwndTrack;
    DWORD dwHoverTime;
};
using LPTRACKMOUSEEVENT = TRACKMOUSEEVENT*;
// With TME_LEAVE, the only kind that is served: WM_MOUSELEAVE, once, when the pointer goes to another window, and be
// it a child of this one, or at once if it isn't over this one. A button that is held down puts it off.
TDKP_API BOOL TrackMouseEvent(TRACKMOUSEEVENT* event);
TDKP_API HCURSOR LoadCursorA(HINSTANCE instance, LPCSTR name);
TDKP_API HCURSOR SetCursor(HCURSOR cursor);
TDKP_API UINT GetDoubleClickTime(void);
TDKP_API UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC function);
TDKP_API BOOL KillTimer(HWND window, UINT_PTR id);

// Resources.
#define RT_BITMAP MAKEINTRESOURCEA(2)
#define RT_DIALOG MAKEINTRESOURCEA(5)
#define RT_STRING MAKEINTRESOURCEA(6)
// Gives the length of the text, UTF-8 and terminated within `size` bytes; 0 and an empty text if there is none.
TDKP_API INT LoadStringA(HINSTANCE instance, UINT id, LPSTR buffer, INT size);
// A DIB section of 24 bits, so that it takes any colour on any display. The caller deletes it.
TDKP_API HBITMAP LoadBitmapA(HINSTANCE instance, LPCSTR name);

// Measures.
TDKP_API INT GetSystemMetrics(INT index);

// Rectangles; right and bottom edge are outside.
TDKP_API BOOL SetRect(RECT* rect, INT left, INT top, INT right, INT bottom);
TDKP_API BOOL IsRectEmpty(const RECT* rect);
TDKP_API BOOL PtInRect(const RECT* rect, POINT point);
TDKP_API BOOL OffsetRect(RECT* rect, INT x, INT y);
TDKP_API BOOL InflateRect(RECT* rect, INT x, INT y);
TDKP_API BOOL IntersectRect(RECT* out, const RECT* first, const RECT* second);
TDKP_API BOOL UnionRect(RECT* out, const RECT* first, const RECT* second);
