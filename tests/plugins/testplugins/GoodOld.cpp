// The older interface alone.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.Name = "Good old", .OffersTwo = false, .OffersOne = true, .SupportConfigure = 7, .RenderMode = 2)
