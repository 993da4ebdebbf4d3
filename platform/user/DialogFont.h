// The font of a dialog, and the units that come from it.
#pragma once

#include "platform/user/DialogTemplate.h"

namespace tdkp {

// How many pixels a character of the font takes: a quarter and an eighth of that is a dialog unit.
struct DialogUnits {
    LONG width = 0;
    LONG height = 0;

    POINT Scale(int x, int y) const;
};

// The units are those of the font that the template asks for. The font itself is made smaller if the system's
// has such proportions that a text of the template wouldn't fit its control. Null, for the system's font, if the
// template asks for none; the caller deletes it.
HFONT MakeDialogFont(const DialogLayout& dialog, DialogUnits* units);

}  // namespace tdkp
