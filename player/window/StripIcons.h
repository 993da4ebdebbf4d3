// The signs on the strip's buttons, painted around the middle of a place.
#pragma once

#include "player/window/Canvas.h"

namespace tdkplay {

void PaintPlaySign(Canvas& canvas, const RECT& place, COLORREF color);
void PaintPauseSign(Canvas& canvas, const RECT& place, COLORREF color);
// To the next piece (1) or the one before (-1).
void PaintStepSign(Canvas& canvas, const RECT& place, COLORREF color, int direction);
// A loudspeaker, with more waves the louder it is. Percent.
void PaintVolumeSign(Canvas& canvas, const RECT& place, COLORREF color, int volume);

}  // namespace tdkplay
