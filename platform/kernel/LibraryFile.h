// A library's file, before the system's loader sees it.
#pragma once

#include <string>

namespace tdkp {

// Does the file end before what its own tables say it holds, as one that is still being copied does? The loader maps
// such a file all the same, and the process would fault on the missing pages. False for files of other kinds.
bool IsCutShort(const std::string& path);

}  // namespace tdkp
