#include "player/AudioOutput.h"

#include "player/ExitCode.h"
#include "player/PulseOutput.h"
#include "player/SilentOutput.h"

namespace tdkplay {
namespace {

constexpr char kAutomatic[] = "auto";

struct OutputKind {
    const char* Name;
    std::unique_ptr<AudioOutput> (*Open)(const PcmFormat& format, HANDLE wake);  // null if it doesn't open
};

std::unique_ptr<AudioOutput> OpenSilent(const PcmFormat& format, HANDLE) {
    return std::make_unique<SilentOutput>(format);
}

// In the order in which "auto" tries them. The last one always opens.
constexpr OutputKind kKinds[] = {
    {kPulseName, PulseOutput::Open},
    {kSilentName, OpenSilent},
};

}  // namespace

std::vector<std::string> OutputNames() {
    std::vector<std::string> names = {kAutomatic};
    for (const OutputKind& kind : kKinds) names.emplace_back(kind.Name);
    return names;
}

std::unique_ptr<AudioOutput> OpenOutput(const std::string& name, const PcmFormat& format, HANDLE wake) {
    for (const OutputKind& kind : kKinds) {
        if (name != kAutomatic && name != kind.Name) continue;
        if (std::unique_ptr<AudioOutput> output = kind.Open(format, wake)) return output;
    }
    throw PlayerError(ExitCode::kNoSound, "the sound output \"" + name + "\" doesn't open");
}

}  // namespace tdkplay
