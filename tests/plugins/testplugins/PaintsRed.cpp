// Paints everything red.
#include "tests/plugins/testplugins/OneColor.h"

TEST_PLUGIN(.Name = "Paints red", .SaysMask = true, .Mask = 0, .Paint = PaintOneColor<0xFF0000>)
