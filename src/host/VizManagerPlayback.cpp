// The manager's side of the player: starting and stopping with it.
#include <cstdlib>
#include <string>

#include "src/host/VizManager.h"

namespace tdkviz {

void CVizManager::TakePlayer(IUnknown* hostContext) {
    Player = QueryFor<ITKPlayer>(hostContext, kIID_ITKPlayer);
    ReadAudioSyncFactor(GetEngine());
}

// Without a player nothing has used the processor that stands, and it had no host to get audio from.
void CVizManager::TakeContext(IUnknown* hostContext) {
    AudioProcessor = std::make_unique<CVizAudioProcessor>(hostContext);
    AudioProcessor->Attach();
    TakePlayer(hostContext);
    RegisterObservers();
    if (HasViews()) StartIfUnderWay();
}

ITKPlaybackEngine* CVizManager::GetEngine() const {
    return Player ? static_cast<ITKPlaybackEngine*>(Player->GetPlaybackEngine()) : nullptr;
}

bool CVizManager::CanVisualize() const {
    ITKPlaybackEngine* engine = GetEngine();
    if (!engine || engine->QueryEngineFlag(kEngineFlagVisualize) == 0) return false;
    return !AudioProcessor || AudioProcessor->IsAudioFlowing();
}

void CVizManager::RegisterObservers() {
    if (ObserversRegistered || !Player) return;
    if (auto source = QueryFor<ITKStateSource>(Player.Get(), kIID_ITKStateSource)) source->AddStateObserver(this);
    Player->AddEngineObserver(this);
    ObserversRegistered = true;
}

void CVizManager::UnregisterObservers() {
    if (!ObserversRegistered || !Player) return;
    if (auto source = QueryFor<ITKStateSource>(Player.Get(), kIID_ITKStateSource)) source->RemoveStateObserver(this);
    Player->RemoveEngineObserver(this);
    ObserversRegistered = false;
}

HRESULT CVizManager::OnStateChange(uint32_t, uint32_t newState) {
    if (CanVisualize() && newState == kEngineStatePlaying && HasViews()) {
        StartVisualization();
    } else {
        StopVisualization();
    }
    return S_OK;
}

HRESULT CVizManager::OnStateDetail(uint32_t) {
    return S_OK;
}

CVizTimer* CVizManager::FindTimer() {
    const MutexLock lock(&timerLock_);
    return Timer.get();
}

CVizTimer& CVizManager::EnsureTimer() {
    const MutexLock lock(&timerLock_);
    if (!Timer) {
        Timer = std::make_unique<CVizTimer>(Worker);
        Timer->SetPeriod(FramePeriod);
    }
    return *Timer;
}

// For what comes during playback.
void CVizManager::StartIfUnderWay() {
    ITKPlaybackEngine* engine = GetEngine();
    const uint32_t state = engine ? engine->GetState() : 0;
    if ((state == kEngineStatePaused || state == kEngineStatePlaying) && CanVisualize()) StartVisualization();
}

void CVizManager::StartVisualization() {
    // The worker may be in the middle of a frame: it zeroes the record itself, before it reads audio again.
    clearFrame_ = true;
    for (const RefPtr<CViz>& view : CopyViews()) view->SetActive(true);
    EnsureTimer().Start();
}

void CVizManager::StopVisualization() {
    if (CVizTimer* timer = FindTimer()) timer->Stop();
    for (const RefPtr<CViz>& view : CopyViews()) view->SetActive(false);
}

HRESULT CVizManager::OnTrackChange(IUnknown*) {
    if (AudioProcessor) AudioProcessor->SetAudioFlowing(true);
    return S_OK;
}

HRESULT CVizManager::OnEngineChange(IUnknown* engine) {
    ReadAudioSyncFactor(engine);
    if (AudioProcessor) AudioProcessor->SetPlaybackEngine(engine);
    return S_OK;
}

void CVizManager::ReadAudioSyncFactor(IUnknown* engine) {
    if (!engine) return;
    RefPtr<IKVAValues> preferences;
    static_cast<ITKPlaybackEngine*>(engine)->GetPreferences(preferences.Receive());
    if (!preferences) return;
    RefPtr<IKVABuffer> text;
    preferences->GetTextValue(kPreferenceAudioSyncFactor, text.Receive());
    if (!text) return;
    // The host's buffer need not end in a terminator.
    const char* bytes = static_cast<const char*>(text->GetBuffer());
    const std::string number = bytes ? std::string(bytes, text->GetSize()) : std::string();
    AudioSyncFactor = std::atof(number.c_str());
}

}  // namespace tdkviz
