// Files and folders that the user has dropped on a window.
#pragma once

#include <windows.h>
// Behind windows.h, which it needs.
#include <shellapi.h>

#include <string>
#include <vector>

namespace tdkplay {

// The paths of a WM_DROPFILES message, which is ended with that.
std::vector<std::string> TakeDroppedFiles(HDROP drop);

}  // namespace tdkplay
