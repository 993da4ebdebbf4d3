// Fails in Initialize.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.Name = "Initialize", .InitializeResult = E_FAIL)
