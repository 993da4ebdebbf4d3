// Popup menus. A part of winuser.h, which includes it.
//
// A menu may be made and changed on any thread, also while it is shown: what is seen is what it held when it opened.
// Texts are UTF-8: "&" marks the next character as the key of the item, "&&" is one "&", and what stands behind a
// tab is put to the right edge.
#pragma once

#include "windef.h"

#define ERROR_INVALID_MENU_HANDLE 1401u
#define ERROR_POPUP_ALREADY_ACTIVE 1446u
#define ERROR_MENU_ITEM_NOT_FOUND 1456u

// Kinds and states of items.
#define MF_STRING 0x00000000u
#define MF_ENABLED 0x00000000u
#define MF_UNCHECKED 0x00000000u
#define MF_GRAYED 0x00000001u
#define MF_DISABLED 0x00000002u
#define MF_CHECKED 0x00000008u
#define MF_POPUP 0x00000010u
#define MF_SEPARATOR 0x00000800u
#define MFT_RADIOCHECK 0x00000200u  // a dot stands for the tick
// What a number that names an item is: its command, looked for in submenus too, or its place, counted from 0.
#define MF_BYCOMMAND 0x00000000u
#define MF_BYPOSITION 0x00000400u

// TrackPopupMenu.
#define TPM_LEFTBUTTON 0x0000u
#define TPM_RIGHTBUTTON 0x0002u  // the right button chooses too
#define TPM_LEFTALIGN 0x0000u
#define TPM_CENTERALIGN 0x0004u
#define TPM_RIGHTALIGN 0x0008u
#define TPM_TOPALIGN 0x0000u
#define TPM_VCENTERALIGN 0x0010u
#define TPM_BOTTOMALIGN 0x0020u
#define TPM_NONOTIFY 0x0080u
#define TPM_RETURNCMD 0x0100u

#define WM_CONTEXTMENU 0x007B
#define WM_INITMENUPOPUP 0x0117
#define WM_ENTERMENULOOP 0x0211
#define WM_EXITMENULOOP 0x0212
// To a window of the class "#32768", which is what an open menu is: gives its HMENU.
#define MN_GETHMENU 0x01E1

TDKP_API HMENU CreatePopupMenu(void);
// Takes its submenus along.
TDKP_API BOOL DestroyMenu(HMENU menu);
TDKP_API BOOL IsMenu(HMENU menu);
// With MF_POPUP `item` is the submenu's handle, which belongs to this menu from then on; else the command.
TDKP_API BOOL AppendMenuA(HMENU menu, UINT flags, UINT_PTR item, LPCSTR text);
// Gives the dot to `checked` and takes the mark from the others from `first` to `last`.
TDKP_API BOOL CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT checked, UINT flags);
TDKP_API INT GetMenuItemCount(HMENU menu);  // -1 if there is no such menu
// MF_ flags, with the number of items in the high byte of the low word if the item opens a submenu. 0xFFFFFFFF if
// there is no such item.
TDKP_API UINT GetMenuState(HMENU menu, UINT item, UINT flags);
// Where an item of an open menu lies on the screen. The window isn't looked at.
TDKP_API BOOL GetMenuItemRect(HWND window, HMENU menu, UINT position, RECT* rect);

// Shows the menu at a place on the screen and comes back when it has gone, serving all messages of the calling thread
// meanwhile; `window` is one of that thread. One menu is shown at a time in a process: ERROR_POPUP_ALREADY_ACTIVE.
// With TPM_RETURNCMD it gives the command that was chosen or 0, else it posts that as WM_COMMAND, unless TPM_NONOTIFY
// is set, and gives TRUE. The window is sent WM_ENTERMENULOOP, WM_INITMENUPOPUP for each menu that opens, and
// WM_EXITMENULOOP, unless TPM_NONOTIFY is set. A menu that is too high for the screen gets more columns.
TDKP_API BOOL TrackPopupMenu(HMENU menu, UINT flags, INT x, INT y, INT reserved, HWND window, const RECT* unused);
// Closes the menu that the calling thread shows.
TDKP_API BOOL EndMenu(void);
