// The subset of Win32 that this project names, for systems without Win32. Names, types, numbers and
// behaviour are the documented ones. On Windows this folder is not on the include path.
#pragma once

#include "unknwn.h"
#include "winbase.h"
#include "windef.h"
#include "wingdi.h"
#include "winreg.h"
#include "winuser.h"

#ifndef WIN32_LEAN_AND_MEAN
#include "shellapi.h"
#endif
