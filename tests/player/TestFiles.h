// Audio files for tests.
#pragma once

#include <sndfile.h>

#include <cmath>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace tdkplay {

// A sine of its own for each channel: channel c has (c + 1) * 200 Hz and half of full scale.
inline bool WriteSines(const std::string& path, int format, int rate, int channels, double seconds) {
    SF_INFO info = {};
    info.samplerate = rate;
    info.channels = channels;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file) return false;
    const auto frames = static_cast<size_t>(seconds * rate);
    std::vector<float> samples(frames * static_cast<size_t>(channels));
    for (size_t i = 0; i < samples.size(); ++i) {
        const auto channel = static_cast<double>(i % static_cast<size_t>(channels));
        const double t = static_cast<double>(i / static_cast<size_t>(channels)) / rate;
        samples[i] = 0.5f * static_cast<float>(std::sin(2.0 * M_PI * 200.0 * (channel + 1.0) * t));
    }
    constexpr size_t kChunk = 4096;  // some encoders overflow their stack with more at once
    for (size_t frame = 0; frame < frames; frame += kChunk)
        sf_writef_float(file, samples.data() + frame * static_cast<size_t>(channels),
                        static_cast<sf_count_t>(std::min(kChunk, frames - frame)));
    return sf_close(file) == 0;
}

}  // namespace tdkplay
