// The class "static": a text, a bitmap or a frame that takes no input.
#pragma once

#include <windows.h>

namespace tdkp {

WNDCLASSA StaticClass();

}  // namespace tdkp
