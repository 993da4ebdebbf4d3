// What the plug-in hears: music, and records at the limits of what can come.
#pragma once

#include <tdkviz/analysis_frame.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tdkplay::check {

inline constexpr int kFramesPerSecond = 30;

// Drums, bass and chords made from arithmetic, with pauses: the same on every run. The player's own piece comes to its
// drums later than most checks last.
class TestMusic {
public:
    // Frames are made when they are first asked for. Good until the next call.
    const VizAnalysisFrame& At(size_t frame);

private:
    std::vector<VizAnalysisFrame> made_;
};

struct NamedFrame {
    std::string Name;
    VizAnalysisFrame Frame;
};

// Silence, full scale in all its forms, noise, an impulse, one channel, odd rates, no format yet.
std::vector<NamedFrame> HardFrames();

// Different noise on each call with the same `state`.
VizAnalysisFrame NoiseFrame(uint32_t& state);

}  // namespace tdkplay::check
