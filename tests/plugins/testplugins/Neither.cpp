// Offers neither plug-in interface.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.Name = "Neither", .OffersTwo = false)
