#include "player/sound/Gain.h"

#include <algorithm>
#include <cmath>

namespace tdkplay {

void Gain::SetPercent(int percent) {
    const float part = static_cast<float>(std::clamp(percent, 0, kFullVolume)) / kFullVolume;
    wanted_ = part * part * part;
    if (!hasBegun_) reached_ = wanted_;
}

void Gain::Apply(int16_t* samples, size_t frames, size_t channels) {
    hasBegun_ = true;
    if (wanted_ == 1.0f && reached_ == 1.0f) return;
    const float step = (wanted_ - reached_) / static_cast<float>(std::max<size_t>(frames, 1));
    for (size_t frame = 0; frame < frames; ++frame) {
        const float factor = reached_ + step * static_cast<float>(frame + 1);
        for (size_t channel = 0; channel < channels; ++channel, ++samples)
            *samples = static_cast<int16_t>(std::lround(static_cast<float>(*samples) * factor));
    }
    if (frames != 0) reached_ = wanted_;
}

}  // namespace tdkplay
