// How buttons look.
#pragma once

#include <windows.h>

namespace tdkp {

// Answers WM_PAINT. `state` is a sum of BST_ flags; a default button is the one that Enter presses.
void PaintButton(HWND button, UINT type, LONG_PTR state, bool isDefault);

// The column where a check box's text begins.
LONG CheckLabelStart();

}  // namespace tdkp
