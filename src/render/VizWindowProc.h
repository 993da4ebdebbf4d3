// The procedure of the output windows' class.
#pragma once

#include <windows.h>

namespace tdkviz {

LRESULT CALLBACK VizWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace tdkviz
