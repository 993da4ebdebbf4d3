// Paints everything green.
#include "tests/plugins/testplugins/OneColor.h"

TEST_PLUGIN(.Name = "Paints green", .SaysMask = true, .Mask = 0, .Paint = PaintOneColor<0x00FF00>)
