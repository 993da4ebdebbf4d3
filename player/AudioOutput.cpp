#include "player/AudioOutput.h"

#include "player/ExitCode.h"
#include "player/PulseOutput.h"
#include "player/SilentOutput.h"

namespace tdkplay {
namespace {

struct OutputKind {
    const char* Name;
    bool HasDevices;
    // Null if it doesn't open. Throws PlayerError with kNoSound for a device that must be there and isn't.
    std::unique_ptr<AudioOutput> (*Open)(const OutputRequest& request, const PcmFormat& format, HANDLE wake);
};

std::unique_ptr<AudioOutput> OpenSilent(const OutputRequest&, const PcmFormat& format, HANDLE) {
    return std::make_unique<SilentOutput>(format);
}

// In the order in which "auto" tries them. The last one always opens.
constexpr OutputKind kKinds[] = {
    {kPulseName, true, PulseOutput::Open},
    {kSilentName, false, OpenSilent},
};

}  // namespace

std::vector<std::string> OutputNames() {
    std::vector<std::string> names = {kAutomaticOutput};
    for (const OutputKind& kind : kKinds) names.emplace_back(kind.Name);
    return names;
}

std::unique_ptr<AudioOutput> OpenOutput(const OutputRequest& request, const PcmFormat& format, HANDLE wake) {
    const bool isAutomatic = request.Kind == kAutomaticOutput;
    for (const OutputKind& kind : kKinds) {
        if (!isAutomatic && request.Kind != kind.Name) continue;
        if (request.MustHaveDevice && isAutomatic && !kind.HasDevices) continue;
        if (std::unique_ptr<AudioOutput> output = kind.Open(request, format, wake)) return output;
    }
    if (request.MustHaveDevice)
        throw PlayerError(ExitCode::kNoSound, "there is no sound server for the device \"" + request.Device + "\"");
    throw PlayerError(ExitCode::kNoSound, "the sound output \"" + request.Kind + "\" doesn't open");
}

}  // namespace tdkplay
