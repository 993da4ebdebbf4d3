// Fails in GetCapabilities, after mask and properties.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.Name = "Capabilities", .CapabilitiesResult = E_FAIL, .SaysMask = true, .Mask = 1, .SupportConfigure = 1,
            .RenderMode = 1)
