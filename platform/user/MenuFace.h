// How open menus look.
#pragma once

#include "platform/user/MenuWindow.h"

namespace tdkp {

// Answers WM_PAINT of the menu's window.
void PaintMenu(const OpenMenu& open);

}  // namespace tdkp
