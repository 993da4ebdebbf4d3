// Fails in GetInfo, after the texts.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.Name = "Info", .InfoResult = E_FAIL)
