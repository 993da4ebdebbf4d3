// Dialogs and the controls that come with the windows themselves. A part of winuser.h, which includes it.
#pragma once

#include "winmsg.h"

using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
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
