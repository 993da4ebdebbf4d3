// Files that are dropped on a window.
#pragma once

#include "windef.h"

using HDROP = struct HDROP__*;

// Files that are dropped on the window, or on a child of it that doesn't accept any itself, come as WM_DROPFILES:
// wParam is their HDROP, which the window ends with DragFinish. Paths are whole and in UTF-8; only files of this
// machine come.
TDKP_API VOID DragAcceptFiles(HWND window, BOOL accept);
// With the number 0xFFFFFFFF the number of files. Else the length of what was copied, or, with a null buffer, the
// length that the path has; 0 if there is no such file. Lengths without the terminating zero.
TDKP_API UINT DragQueryFileA(HDROP drop, UINT number, LPSTR path, UINT size);
TDKP_API VOID DragFinish(HDROP drop);
