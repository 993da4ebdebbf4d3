#include "player/host/PlayerObject.h"

#include <algorithm>

namespace tdkplay {
namespace {

template <typename T>
HRESULT Add(std::mutex& mutex, std::vector<T*>& observers, T* observer) {
    if (!observer) return E_INVALIDARG;
    const std::lock_guard lock(mutex);
    if (std::find(observers.begin(), observers.end(), observer) == observers.end()) observers.push_back(observer);
    return S_OK;
}

template <typename T>
HRESULT Remove(std::mutex& mutex, std::vector<T*>& observers, T* observer) {
    const std::lock_guard lock(mutex);
    return std::erase(observers, observer) != 0 ? S_OK : E_FAIL;
}

template <typename T>
std::vector<T*> Snapshot(std::mutex& mutex, const std::vector<T*>& observers) {
    const std::lock_guard lock(mutex);
    return observers;
}

}  // namespace

void PlayerObject::SetEngine(ComPtr<Engine> engine) {
    IUnknown* const unknown = static_cast<ITKPlaybackEngine*>(engine.Get());
    {
        const std::lock_guard lock(mutex_);
        engines_.push_back(std::move(engine));
    }
    for (ITKPlaybackEngineObserver* observer : Snapshot(mutex_, engineObservers_)) observer->OnEngineChange(unknown);
}

void PlayerObject::SetState(uint32_t state) {
    const ComPtr<Engine> engine = CurrentEngine();
    if (!engine) return;
    const uint32_t oldState = engine->GetState();
    if (oldState == state) return;
    engine->SetState(state);
    TellState(oldState, state);
}

void PlayerObject::SetStateUntold(uint32_t state) {
    if (const ComPtr<Engine> engine = CurrentEngine()) engine->SetState(state);
}

void PlayerObject::RepeatState() {
    if (const ComPtr<Engine> engine = CurrentEngine()) TellState(engine->GetState(), engine->GetState());
}

void PlayerObject::TellState(uint32_t oldState, uint32_t newState) {
    for (ITKStateObserver* observer : Snapshot(mutex_, stateObservers_)) observer->OnStateChange(oldState, newState);
}

HRESULT PlayerObject::QueryInterface(const GUID& id, void** out) {
    return GiveInterface(id, out,
                         {{kIID_IUnknown, static_cast<ITKPlayer*>(this)},
                          {kIID_ITKPlayer, static_cast<ITKPlayer*>(this)},
                          {kIID_ITKStateSource, static_cast<ITKStateSource*>(this)}});
}

ComPtr<Engine> PlayerObject::CurrentEngine() {
    const std::lock_guard lock(mutex_);
    return engines_.empty() ? ComPtr<Engine>() : engines_.back();
}

IUnknown* PlayerObject::GetPlaybackEngine() {
    return static_cast<ITKPlaybackEngine*>(CurrentEngine().Get());
}

HRESULT PlayerObject::AddEngineObserver(ITKPlaybackEngineObserver* observer) {
    return Add(mutex_, engineObservers_, observer);
}

HRESULT PlayerObject::RemoveEngineObserver(ITKPlaybackEngineObserver* observer) {
    return Remove(mutex_, engineObservers_, observer);
}

HRESULT PlayerObject::AddStateObserver(ITKStateObserver* observer) {
    return Add(mutex_, stateObservers_, observer);
}

HRESULT PlayerObject::RemoveStateObserver(ITKStateObserver* observer) {
    return Remove(mutex_, stateObservers_, observer);
}

}  // namespace tdkplay
