#include "player/sound/AudioOutput.h"

#include "player/base/ExitCode.h"
#include "player/sound/PulseOutput.h"
#include "player/sound/SilentOutput.h"
#include "player/sound/SteadyOutput.h"

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

// Null if nothing opens. `onlyDevices` passes over what makes no sound.
std::unique_ptr<AudioOutput> OpenFirst(const OutputRequest& request, const PcmFormat& format, HANDLE wake,
                                       bool onlyDevices) {
    for (const OutputKind& kind : kKinds) {
        if (request.Kind != kAutomaticOutput && request.Kind != kind.Name) continue;
        if (onlyDevices && !kind.HasDevices) continue;
        if (std::unique_ptr<AudioOutput> output = kind.Open(request, format, wake)) return output;
    }
    return nullptr;
}

std::unique_ptr<AudioOutput> MakeSteady(std::unique_ptr<AudioOutput> first, OutputRequest request,
                                        const PcmFormat& format, HANDLE wake) {
    if (request.Kind == kSilentName) return first;
    request.MustHaveDevice = false;
    return std::make_unique<SteadyOutput>(
        std::move(first), [=] { return OpenFirst(request, format, wake, true); }, format, wake);
}

}  // namespace

std::vector<std::string> OutputNames() {
    std::vector<std::string> names = {kAutomaticOutput};
    for (const OutputKind& kind : kKinds) names.emplace_back(kind.Name);
    return names;
}

std::unique_ptr<AudioOutput> OpenOutput(const OutputRequest& request, const PcmFormat& format, HANDLE wake) {
    std::unique_ptr<AudioOutput> first = OpenFirst(request, format, wake, request.MustHaveDevice);
    if (!first && request.MustHaveDevice)
        throw PlayerError(ExitCode::kNoSound, "there is no sound server for the device \"" + request.Device + "\"");
    if (!first) throw PlayerError(ExitCode::kNoSound, "the sound output \"" + request.Kind + "\" doesn't open");
    return MakeSteady(std::move(first), request, format, wake);
}

std::unique_ptr<AudioOutput> ReopenOutput(OutputRequest request, const PcmFormat& format, HANDLE wake) {
    request.MustHaveDevice = false;
    std::unique_ptr<AudioOutput> first = OpenFirst(request, format, wake, false);
    if (!first) first = OpenSilent(request, format, wake);
    return MakeSteady(std::move(first), request, format, wake);
}

}  // namespace tdkplay
