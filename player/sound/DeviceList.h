// The sound devices, for people and scripts.
#pragma once

namespace tdkplay {

// On the standard output, a line for each device: "output" or "input", its name, its description and, behind the
// server's own choice, "default", with tabs between them. Throws PlayerError with kNoSound if there is no sound server.
void PrintDevices();

}  // namespace tdkplay
