// Where the pictures of several views stand in a window.
#pragma once

#include <windows.h>

#include <vector>

#include "player/base/PictureSize.h"

namespace tdkplay {

// Cells of one size, row by row, as many columns as make the cells largest when they hold pictures of the usual shape.
// A last row that isn't full stands in the middle. A single cell is the whole room.
std::vector<RECT> LayOutGrid(PictureSize room, size_t cells);

}  // namespace tdkplay
