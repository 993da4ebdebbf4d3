// Files that come from other programs, and the windows that take them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tdkp {

// Does the innermost window at this place of the screen, inside the top-level window of this one, or a parent of
// it accept files? Any thread; nothing is waited for.
bool AcceptsFiles(HWND window, POINT screen);
// Posts that window its WM_DROPFILES. False if there is none.
bool DropFiles(HWND window, POINT screen, std::vector<std::string> paths);

}  // namespace tdkp
