// The window classes of the process. Everything here wants the dispatcher's lock.
#pragma once

#include "platform/user/WindowState.h"

namespace tdkp {

// By name or atom; the class of this module if there is one, else of any. Null if there is none.
std::shared_ptr<WindowClass> FindClass(const DispatcherGuard& guard, LPCSTR name, HINSTANCE instance);

}  // namespace tdkp
