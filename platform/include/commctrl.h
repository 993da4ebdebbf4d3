// The control that comes beside those of the windows themselves: the trackbar. It lies flat, has tick marks below it
// or on both sides, and sends its parent WM_HSCROLL with a TB_ code in the low word of wParam and, for the thumb's
// codes, the position in the high word.
#pragma once

#include "winuser.h"

#define TRACKBAR_CLASSA "msctls_trackbar32"

#define TBS_HORZ 0x0000u
#define TBS_AUTOTICKS 0x0001u  // else a mark at each end alone
#define TBS_BOTH 0x0008u
#define TBS_NOTICKS 0x0010u

#define TBM_GETPOS (WM_USER + 0)
#define TBM_SETPOS (WM_USER + 5)       // wParam: redraw, lParam: position
#define TBM_SETRANGE (WM_USER + 6)     // wParam: redraw, lParam: minimum in the low word, maximum in the high word
#define TBM_SETTICFREQ (WM_USER + 20)  // wParam: positions from one mark to the next, 1 at first

#define TB_LINEUP 0
#define TB_LINEDOWN 1
#define TB_PAGEUP 2
#define TB_PAGEDOWN 3
#define TB_THUMBPOSITION 4
#define TB_THUMBTRACK 5
#define TB_TOP 6
#define TB_BOTTOM 7
#define TB_ENDTRACK 8

// The class is there from the start.
TDKP_API VOID InitCommonControls(void);
