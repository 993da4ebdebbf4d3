// How buttons look.
#pragma once

#include <windows.h>

namespace tdkp {

class ControlPaint;

// Answers WM_PAINT. `state` is a sum of BST_ flags; a default button is the one that Enter presses.
void PaintButton(HWND button, UINT type, LONG_PTR state, bool isDefault);

// The tick of a check box, in the middle of the box; a COLOR_ number.
void PaintMark(ControlPaint& paint, const RECT& box, INT color);

// The column where a check box's text begins.
LONG CheckLabelStart();

}  // namespace tdkp
