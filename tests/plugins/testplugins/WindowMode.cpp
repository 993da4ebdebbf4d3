// Paints by itself into the view's window.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.Name = "Window mode", .RenderMode = 1)
