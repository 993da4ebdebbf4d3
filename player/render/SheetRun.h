// A song as a contact sheet: what the plug-ins make of it at several moments, on the stepped clock.
#pragma once

#include <memory>
#include <string>

#include "player/base/Interrupt.h"
#include "player/session/Options.h"
#include "player/sound/Decoder.h"

namespace tdkplay {

// All plug-ins, or those that the options name, with the song's title above. The same song, options and plug-ins give
// the same bytes. Throws PlayerError, with kInterrupted if the user has stopped it; nothing is written then.
void DrawSheet(const Options& options, const std::string& title, std::unique_ptr<Decoder> decoder,
               const Interrupt& interrupt);

}  // namespace tdkplay
