// Both interfaces: only the newer one is spoken to.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.Name = "Both", .OffersOne = true)
