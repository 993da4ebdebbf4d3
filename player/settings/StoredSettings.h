// All that player, add-on and plug-ins keep in the registry, for people to read and to clear. Needs neither display
// nor sound. Throws PlayerError with kNoSettings.
#pragma once

namespace tdkplay {

// On the standard output: each value with its unit and its name in the registry.
void PrintStoredSettings();

// Clears what PrintStoredSettings prints, nothing else, and says what that was.
void ResetStoredSettings();

}  // namespace tdkplay
