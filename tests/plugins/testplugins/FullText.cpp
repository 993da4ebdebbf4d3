// Fills each text to the last byte, without a terminator, and stores odd values.
#include "tests/plugins/testplugins/TestPlugin.h"

TEST_PLUGIN(.FillsTexts = true, .SaysMask = true, .WantsSpectrum = 2)
