// The newer interface, with all that it can say.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.Name = "Good two", .SaysMask = true, .Mask = 5, .WantsSpectrum = 1, .SupportConfigure = 1)
