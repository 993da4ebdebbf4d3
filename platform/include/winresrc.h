// The styles that resource files name, for the resource compiler: plain numbers, and nothing that is C++.
// A program takes them from <windows.h>.
#pragma once

#define WS_POPUP 0x80000000
#define WS_VISIBLE 0x10000000
#define WS_CAPTION 0x00C00000
#define WS_SYSMENU 0x00080000
#define WS_GROUP 0x00020000
#define WS_TABSTOP 0x00010000

#define DS_SETFONT 0x40
#define DS_MODALFRAME 0x80

#define BS_PUSHBUTTON 0x0
#define BS_AUTOCHECKBOX 0x3
#define BS_GROUPBOX 0x7

#define SS_LEFT 0x0
#define SS_CENTER 0x1
#define SS_RIGHT 0x2
#define SS_BLACKFRAME 0x7
#define SS_BITMAP 0xE

#define TBS_BOTH 0x8
#define TBS_NOTICKS 0x10
