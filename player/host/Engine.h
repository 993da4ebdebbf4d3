// The playback engine as the add-on sees it: state, delay and preferences for one device in one format.
// Another device or format is another engine.
#pragma once

#include <tdkviz/host.h>

#include <atomic>

#include "player/host/Values.h"

namespace tdkplay {

// The states beside the two that the contract names.
inline constexpr uint32_t kEngineStateStopped = 0;

class Engine final : public ComObject<ITKPlaybackEngine, IKVAAudioDelay> {
public:
    // In seconds: the most and the least that it tells, with the offset.
    explicit Engine(double largestDelay, double smallestDelay = 0.0);

    // [any]
    void SetState(uint32_t state) { state_ = state; }
    // Whether pictures are wanted at all; they are at first. [any]
    void SetVisualize(bool visualize) { visualize_ = visualize; }
    // Before each delivery: seconds from the end of this delivery to what is heard now.
    void SetDelay(double seconds);
    // Milliseconds that the pictures come later than the delay alone makes them. From the next delivery on. [any]
    void SetOffset(int milliseconds) { offset_ = milliseconds; }

    HRESULT QueryInterface(const GUID& id, void** out) override;
    uint32_t GetState() override { return state_; }
    uint32_t QueryEngineFlag(uint32_t flag) override { return flag == kEngineFlagVisualize && visualize_ ? 1 : 0; }
    HRESULT GetPreferences(IKVAValues** values) override;
    HRESULT GetConfiguredDelay(uint32_t* milliseconds) override;
    HRESULT GetCurrentDelay(uint32_t* milliseconds) override;

private:
    const int largestDelay_;  // milliseconds
    const int smallestDelay_;
    const ComPtr<Values> preferences_;
    std::atomic<uint32_t> state_ = kEngineStateStopped;
    std::atomic<bool> visualize_ = true;
    std::atomic<int> delay_ = 0;  // milliseconds
    std::atomic<int> offset_ = 0;
};

}  // namespace tdkplay
