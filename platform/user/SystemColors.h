// The colours of the system: the classic ones, all of them among the twenty that every palette has.
#pragma once

#include <windows.h>

namespace tdkp {

// The brush that a class names, which may be a colour's number plus 1.
HBRUSH BrushOfClass(HBRUSH brush);
// Is it one of those that GetSysColorBrush gives?
bool IsSystemBrush(HBRUSH brush);

}  // namespace tdkp
