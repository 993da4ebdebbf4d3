// Windows, messages, painting and input. The rules that every function shares:
//  - A window belongs to the thread that made it; its procedure runs there and nowhere else.
//  - The window is its client area: borders and captions are the window manager's, outside of it.
//  - A parent that the layer didn't make is taken as a window of a foreign client of the display.
// Device contexts, drawing and text are declared here where Win32 does so, and served by the drawing room.
#pragma once

#include "windef.h"
#include "winmenu.h"

using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using TIMERPROC = VOID(CALLBACK*)(HWND, UINT, UINT_PTR, DWORD);

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
struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
using LPMSG = MSG*;
struct PAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
    BOOL fRestore;
    BOOL fIncUpdate;
    BYTE rgbReserved[32];
};
// What a dialog's resource begins with. Behind it stand the menu, the class and the title, the font if the style
// has DS_SETFONT, and at the next multiple of four bytes each of the controls.
#pragma pack(push, 2)
struct DLGTEMPLATE {
    DWORD style;
    DWORD dwExtendedStyle;
    WORD cdit;
    SHORT x;
    SHORT y;
    SHORT cx;
    SHORT cy;
};
struct DLGITEMTEMPLATE {
    DWORD style;
    DWORD dwExtendedStyle;
    SHORT x;
    SHORT y;
    SHORT cx;
    SHORT cy;
    WORD id;
};
#pragma pack(pop)
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
#define CS_CLASSDC 0x0040
#define CS_PARENTDC 0x0080
#define CS_NOCLOSE 0x0200
#define CS_SAVEBITS 0x0800
#define CS_BYTEALIGNCLIENT 0x1000
#define CS_BYTEALIGNWINDOW 0x2000
#define CS_GLOBALCLASS 0x4000

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
#define GWL_WNDPROC (-4)
#define GWL_HINSTANCE (-6)
#define GWL_HWNDPARENT (-8)
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

// Messages.
#define WM_NULL 0x0000
#define WM_CREATE 0x0001
#define WM_DESTROY 0x0002
#define WM_MOVE 0x0003
#define WM_SIZE 0x0005
#define WM_ACTIVATE 0x0006
#define WM_SETFOCUS 0x0007
#define WM_KILLFOCUS 0x0008
#define WM_ENABLE 0x000A
#define WM_SETTEXT 0x000C
#define WM_GETTEXT 0x000D
#define WM_GETTEXTLENGTH 0x000E
#define WM_PAINT 0x000F
#define WM_CLOSE 0x0010
#define WM_QUIT 0x0012
#define WM_ERASEBKGND 0x0014
#define WM_SHOWWINDOW 0x0018
#define WM_CANCELMODE 0x001F
#define WM_SETCURSOR 0x0020
#define WM_SETFONT 0x0030
#define WM_GETFONT 0x0031
#define WM_NOTIFY 0x004E
#define WM_NCCREATE 0x0081
#define WM_NCDESTROY 0x0082
#define WM_NCHITTEST 0x0084
#define WM_GETDLGCODE 0x0087
#define WM_KEYFIRST 0x0100
#define WM_KEYDOWN 0x0100
#define WM_KEYUP 0x0101
#define WM_CHAR 0x0102
#define WM_DEADCHAR 0x0103
#define WM_SYSKEYDOWN 0x0104
#define WM_SYSKEYUP 0x0105
#define WM_SYSCHAR 0x0106
#define WM_KEYLAST 0x0109
#define WM_INITDIALOG 0x0110
#define WM_COMMAND 0x0111
#define WM_SYSCOMMAND 0x0112
#define WM_TIMER 0x0113
#define WM_HSCROLL 0x0114
#define WM_VSCROLL 0x0115
#define WM_CTLCOLORBTN 0x0135
#define WM_CTLCOLORDLG 0x0136
#define WM_CTLCOLORSTATIC 0x0138
#define WM_MOUSEFIRST 0x0200
#define WM_MOUSEMOVE 0x0200
#define WM_LBUTTONDOWN 0x0201
#define WM_LBUTTONUP 0x0202
#define WM_LBUTTONDBLCLK 0x0203
#define WM_RBUTTONDOWN 0x0204
#define WM_RBUTTONUP 0x0205
#define WM_RBUTTONDBLCLK 0x0206
#define WM_MBUTTONDOWN 0x0207
#define WM_MBUTTONUP 0x0208
#define WM_MBUTTONDBLCLK 0x0209
#define WM_MOUSEWHEEL 0x020A
#define WM_MOUSELAST 0x020E
#define WM_CAPTURECHANGED 0x0215
#define WM_USER 0x0400
#define WM_APP 0x8000

// WM_SIZE, WM_ACTIVATE, WM_NCHITTEST, WM_SYSCOMMAND.
#define SIZE_RESTORED 0
#define SIZE_MINIMIZED 1
#define SIZE_MAXIMIZED 2
#define WA_INACTIVE 0
#define WA_ACTIVE 1
#define WA_CLICKACTIVE 2
#define HTNOWHERE 0
#define HTCLIENT 1
#define SC_CLOSE 0xF060

// Key states in a mouse message.
#define MK_LBUTTON 0x0001
#define MK_RBUTTON 0x0002
#define MK_SHIFT 0x0004
#define MK_CONTROL 0x0008
#define MK_MBUTTON 0x0010
#define WHEEL_DELTA 120

// Virtual keys; letters and digits are their ASCII capitals.
#define VK_LBUTTON 0x01
#define VK_RBUTTON 0x02
#define VK_CANCEL 0x03
#define VK_MBUTTON 0x04
#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_RETURN 0x0D
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_PAUSE 0x13
#define VK_CAPITAL 0x14
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_PRIOR 0x21
#define VK_NEXT 0x22
#define VK_END 0x23
#define VK_HOME 0x24
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_SNAPSHOT 0x2C
#define VK_INSERT 0x2D
#define VK_DELETE 0x2E
#define VK_LWIN 0x5B
#define VK_RWIN 0x5C
#define VK_APPS 0x5D
#define VK_NUMPAD0 0x60
#define VK_MULTIPLY 0x6A
#define VK_ADD 0x6B
#define VK_SUBTRACT 0x6D
#define VK_DECIMAL 0x6E
#define VK_DIVIDE 0x6F
#define VK_F1 0x70
#define VK_F2 0x71
#define VK_F3 0x72
#define VK_F4 0x73
#define VK_F5 0x74
#define VK_F6 0x75
#define VK_F7 0x76
#define VK_F8 0x77
#define VK_F9 0x78
#define VK_F10 0x79
#define VK_F11 0x7A
#define VK_F12 0x7B
#define VK_NUMLOCK 0x90
#define VK_SCROLL 0x91
#define VK_LSHIFT 0xA0
#define VK_RSHIFT 0xA1
#define VK_LCONTROL 0xA2
#define VK_RCONTROL 0xA3
#define VK_LMENU 0xA4
#define VK_RMENU 0xA5
#define VK_OEM_1 0xBA
#define VK_OEM_PLUS 0xBB
#define VK_OEM_COMMA 0xBC
#define VK_OEM_MINUS 0xBD
#define VK_OEM_PERIOD 0xBE
#define VK_OEM_2 0xBF
#define VK_OEM_3 0xC0
#define VK_OEM_4 0xDB
#define VK_OEM_5 0xDC
#define VK_OEM_6 0xDD
#define VK_OEM_7 0xDE

// What a message queue holds, for waits and peeks.
#define QS_KEY 0x0001
#define QS_MOUSEMOVE 0x0002
#define QS_MOUSEBUTTON 0x0004
#define QS_POSTMESSAGE 0x0008
#define QS_TIMER 0x0010
#define QS_PAINT 0x0020
#define QS_SENDMESSAGE 0x0040
#define QS_HOTKEY 0x0080
#define QS_ALLPOSTMESSAGE 0x0100
#define QS_RAWINPUT 0x0400
#define QS_MOUSE (QS_MOUSEMOVE | QS_MOUSEBUTTON)
#define QS_INPUT (QS_MOUSE | QS_KEY | QS_RAWINPUT)
#define QS_ALLEVENTS (QS_INPUT | QS_POSTMESSAGE | QS_TIMER | QS_PAINT | QS_HOTKEY)
#define QS_ALLINPUT (QS_INPUT | QS_POSTMESSAGE | QS_TIMER | QS_PAINT | QS_HOTKEY | QS_SENDMESSAGE)
#define PM_NOREMOVE 0x0000
#define PM_REMOVE 0x0001
#define PM_NOYIELD 0x0002

// Controls: the classes "Button" (with these types), "Static" and, in commctrl.h, the trackbar.
#define BS_PUSHBUTTON 0x00000000u
#define BS_DEFPUSHBUTTON 0x00000001u
#define BS_AUTOCHECKBOX 0x00000003u
#define BS_GROUPBOX 0x00000007u
#define BS_TYPEMASK 0x0000000Fu
#define BN_CLICKED 0
#define BM_GETCHECK 0x00F0
#define BM_SETCHECK 0x00F1
#define BM_GETSTATE 0x00F2
#define BM_SETSTATE 0x00F3
#define BM_CLICK 0x00F5
#define BST_UNCHECKED 0x0000
#define BST_CHECKED 0x0001
#define BST_PUSHED 0x0004
#define SS_LEFT 0x00000000u
#define SS_CENTER 0x00000001u
#define SS_RIGHT 0x00000002u
#define SS_BLACKFRAME 0x00000007u
#define SS_BITMAP 0x0000000Eu  // the title is "#" and the number of a bitmap resource, or empty
#define SS_TYPEMASK 0x0000001Fu
#define STM_SETIMAGE 0x0172  // gives the former image, which a program that set it owns
#define IMAGE_BITMAP 0

// Dialogs.
#define DS_ABSALIGN 0x01u
#define DS_SETFONT 0x40u
#define DS_MODALFRAME 0x80u
#define DS_CENTER 0x0800u
#define DWLP_MSGRESULT 0
#define DWLP_DLGPROC 8
#define DWLP_USER 16
#define DLGWINDOWEXTRA 48
#define IDOK 1
#define IDCANCEL 2

// GetDlgCode answers.
#define DLGC_WANTARROWS 0x0001
#define DLGC_WANTALLKEYS 0x0004
#define DLGC_DEFPUSHBUTTON 0x0010
#define DLGC_UNDEFPUSHBUTTON 0x0020
#define DLGC_BUTTON 0x2000
#define DLGC_STATIC 0x0100

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
TDKP_API INT GetClassNameA(HWND window, LPSTR text, INT size);

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
TDKP_API BOOL AdjustWindowRectEx(RECT* rect, DWORD style, BOOL menu, DWORD exStyle);
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

// Dialogs. The template is a resource of the module, or stands in memory; its units are a quarter of the average
// width and an eighth of the height of its font. Without DS_ABSALIGN the place is counted from the client area of
// the parent; a template that names no place is put into the middle of it, or of the screen. The size is that of
// the client area. The first control that takes the keyboard goes along with WM_INITDIALOG and gets the focus if
// the procedure gives TRUE. Texts are drawn with the font of the template, at TDKVIZ_DPI pixels to the inch.
TDKP_API HWND CreateDialogParamA(HINSTANCE instance, LPCSTR name, HWND parent, DLGPROC procedure, LPARAM parameter);
TDKP_API HWND CreateDialogIndirectParamA(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                         LPARAM parameter);
// For message loops, which let go what it took: keys of dialogs, and every other message for one.
TDKP_API BOOL IsDialogMessageA(HWND dialog, MSG* message);
TDKP_API BOOL CheckDlgButton(HWND dialog, INT id, UINT check);
TDKP_API UINT IsDlgButtonChecked(HWND dialog, INT id);

// Messages.
TDKP_API BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
TDKP_API BOOL PostThreadMessageA(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam);
TDKP_API VOID PostQuitMessage(INT exitCode);
TDKP_API LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
TDKP_API LRESULT SendDlgItemMessageA(HWND parent, INT id, UINT message, WPARAM wParam, LPARAM lParam);
TDKP_API BOOL GetMessageA(MSG* message, HWND window, UINT first, UINT last);
TDKP_API BOOL PeekMessageA(MSG* message, HWND window, UINT first, UINT last, UINT remove);
TDKP_API BOOL WaitMessage(void);
TDKP_API BOOL TranslateMessage(const MSG* message);
TDKP_API LRESULT DispatchMessageA(const MSG* message);
TDKP_API LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
TDKP_API LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam);
TDKP_API LONG GetMessageTime(void);
TDKP_API DWORD GetMessagePos(void);
TDKP_API DWORD GetQueueStatus(UINT flags);
TDKP_API BOOL InSendMessage(void);
TDKP_API DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds,
                                         DWORD wakeMask);

// Painting.
TDKP_API BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase);
TDKP_API BOOL ValidateRect(HWND window, const RECT* rect);
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
TDKP_API BOOL GetCursorPos(POINT* point);
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
