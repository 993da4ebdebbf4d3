// The player as the add-on sees it: the way to the engine, and the source of state changes.
#pragma once

#include <tdkviz/host.h>

#include <mutex>
#include <vector>

#include "player/host/Engine.h"

namespace tdkplay {

class PlayerObject final : public ComObject<ITKPlayer, ITKStateSource> {
public:
    // Puts another engine in place and tells all observers. [host]
    void SetEngine(ComPtr<Engine> engine);
    // Changes the state of the engine in place and tells all observers. [host]
    void SetState(uint32_t state);
    // Changes the state of the engine in place and tells nobody: frames are drawn in state 3 alone, so out of it the
    // last one stays, while a change that is told clears it. [host]
    void SetStateUntold(uint32_t state);
    // Tells all observers the state that is in force, since something else that they look at has changed. [host]
    void RepeatState();

    HRESULT QueryInterface(const GUID& id, void** out) override;
    IUnknown* GetPlaybackEngine() override;
    HRESULT AddEngineObserver(ITKPlaybackEngineObserver* observer) override;
    HRESULT RemoveEngineObserver(ITKPlaybackEngineObserver* observer) override;
    HRESULT AddStateObserver(ITKStateObserver* observer) override;
    HRESULT RemoveStateObserver(ITKStateObserver* observer) override;

private:
    ComPtr<Engine> CurrentEngine();
    void TellState(uint32_t oldState, uint32_t newState);

    std::mutex mutex_;  // guards what follows; never held while an observer is called
    std::vector<ITKPlaybackEngineObserver*> engineObservers_;
    std::vector<ITKStateObserver*> stateObservers_;
    // The last one is in place. The others stay: GetPlaybackEngine gives no reference, so another thread
    // may still be using one of them.
    std::vector<ComPtr<Engine>> engines_;
};

}  // namespace tdkplay
