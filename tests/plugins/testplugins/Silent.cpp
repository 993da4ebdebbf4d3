// Leaves texts, mask and flag alone, and throws when it has to draw.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.ThrowsInDraw = true)
