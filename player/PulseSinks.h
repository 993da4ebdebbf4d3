// The devices of a PulseAudio server.
#pragma once

#include <pulse/pulseaudio.h>

#include <string>

#include "player/AudioOutput.h"

namespace tdkplay {

// The name of the sink for this request, empty for the server's own choice. With the lock of the main loop held and
// the context ready. Throws PlayerError with kNoSound, which tells what sinks there are, if the sink must be there
// and isn't.
std::string ChooseSink(pa_threaded_mainloop* loop, pa_context* context, const OutputRequest& request);

}  // namespace tdkplay
