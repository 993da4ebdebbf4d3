// Paints everything blue.
#include "tests/plugins/testplugins/OneColor.h"

TEST_PLUGIN(.Name = "Paints blue", .SaysMask = true, .Mask = 0, .Paint = PaintOneColor<0x0000FF>)
