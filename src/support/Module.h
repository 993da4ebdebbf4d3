// The two values that hang on the loaded module.
#pragma once

#include <windows.h>

#include <tdkviz/com.h>

#include "src/support/Relaxed.h"

namespace tdkviz {

// The library's own handle, stored on process attach.
extern Relaxed<HMODULE> ModuleHandle;
// The host's context [not counted], from Initialize until the component's last Release; else null.
extern Relaxed<IUnknown*> HostContext;

}  // namespace tdkviz
