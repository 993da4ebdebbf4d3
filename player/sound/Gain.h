// The volume: what the listener hears of the samples that everybody else gets in full.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tdkplay {

inline constexpr int kFullVolume = 100;  // percent

// Used by one thread at a time.
class Gain {
public:
    // 0 to 100. Half the way down sounds about half as loud: the factor is the cube of percent / 100.
    void SetPercent(int percent);
    // In place, interleaved. A change since the last call runs in over this one, so that it makes no click;
    // full volume leaves every bit as it is.
    void Apply(int16_t* samples, size_t frames, size_t channels);

private:
    float wanted_ = 1.0f;
    float reached_ = 1.0f;
    bool hasBegun_ = false;
};

}  // namespace tdkplay
