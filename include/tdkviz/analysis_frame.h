// VizAnalysisFrame: what a plug-in gets to see of the audio, 10 to 30 times a second.
#pragma once

#include <stddef.h>
#include <stdint.h>

inline constexpr int kWaveformSamples = 512;
inline constexpr int kSpectrumBands = 256;

// 1,544 bytes, little-endian, fixed byte for byte. Waveform and spectrum come from the very same 512
// sample frames, those that the listener hears now. In mono both arrays of a kind are equal.
struct VizAnalysisFrame {
    uint32_t Reserved;  // 0
    // Raw samples, oldest first: the high byte of the 16-bit sample, -128 to 127, silence 0.
    int8_t WaveformLeft[kWaveformSamples];
    int8_t WaveformRight[kWaveformSamples];
    // Loudness of band k, centred on (k + 0.5) x rate / 512 Hz: 2 x (20 log10(E) - 70) limited to 0..255,
    // with E the band's energy. Fresh only if the plug-in of some visible view asked for it.
    uint8_t SpectrumLeft[kSpectrumBands];
    uint8_t SpectrumRight[kSpectrumBands];
    uint16_t ChannelCount;   // as the host announced it; 0 before the first format
    uint16_t SampleRateLow;  // Hz, low 16 bits
};

static_assert(sizeof(VizAnalysisFrame) == 1544);
static_assert(offsetof(VizAnalysisFrame, WaveformLeft) == 4);
static_assert(offsetof(VizAnalysisFrame, SpectrumLeft) == 1028);
static_assert(offsetof(VizAnalysisFrame, ChannelCount) == 1540);
