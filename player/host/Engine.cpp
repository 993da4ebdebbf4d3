#include "player/host/Engine.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "player/host/Buffer.h"

namespace tdkplay {
namespace {

int ToMilliseconds(double seconds) {
    return static_cast<int>(std::lround(std::clamp(seconds, -3600.0, 3600.0) * 1000.0));
}

}  // namespace

Engine::Engine(double largestDelay, double smallestDelay)
    : largestDelay_(ToMilliseconds(largestDelay)),
      smallestDelay_(ToMilliseconds(smallestDelay)),
      preferences_(MakeCom<Values>()) {
    const std::string seconds =
        std::to_string(largestDelay_ / 1000) + "." + std::to_string(1000 + largestDelay_ % 1000).substr(1);
    preferences_->SetTextValue(kPreferenceAudioSyncFactor, Buffer::FromText(seconds).Get());
}

void Engine::SetDelay(double seconds) {
    delay_ = ToMilliseconds(seconds);
}

HRESULT Engine::QueryInterface(const GUID& id, void** out) {
    return GiveInterface(id, out,
                         {{kIID_IUnknown, static_cast<ITKPlaybackEngine*>(this)},
                          {kIID_IKVAAudioDelay, static_cast<IKVAAudioDelay*>(this)}});
}

HRESULT Engine::GetPreferences(IKVAValues** values) {
    if (!values) return E_INVALIDARG;
    *values = ComPtr<IKVAValues>(preferences_.Get()).Detach();
    return S_OK;
}

HRESULT Engine::GetConfiguredDelay(uint32_t* milliseconds) {
    if (!milliseconds) return E_INVALIDARG;
    *milliseconds = static_cast<uint32_t>(largestDelay_);
    return S_OK;
}

HRESULT Engine::GetCurrentDelay(uint32_t* milliseconds) {
    if (!milliseconds) return E_INVALIDARG;
    *milliseconds = static_cast<uint32_t>(std::clamp(delay_ + offset_, smallestDelay_, largestDelay_));
    return S_OK;
}

}  // namespace tdkplay
