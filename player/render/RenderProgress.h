// How far a rendering is, on standard output: a bar on a terminal, a line now and then elsewhere, or JSON.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "player/render/FrameSink.h"

namespace tdkplay {

class RenderProgress {
public:
    // `total` is the number of frames to come as far as it is known, else 0.
    RenderProgress(const std::string& path, const VideoFormat& format, uint64_t total, bool json);

    // After each frame, with the number of frames so far.
    void Report(uint64_t frames);
    // The summary.
    void End(uint64_t frames, bool interrupted);

private:
    enum class Style { kBar, kLines, kJson };

    void PrintBar(uint64_t frames, double elapsed) const;
    void PrintLine(uint64_t frames, double elapsed) const;
    void PrintJson(uint64_t frames, double elapsed) const;
    double Elapsed() const;
    double SongSeconds(uint64_t frames) const { return static_cast<double>(frames) / format_.Rate; }
    double Speed(uint64_t frames, double elapsed) const { return elapsed > 0 ? SongSeconds(frames) / elapsed : 0.0; }
    // Seconds until the end; 0 if nobody knows.
    double Left(uint64_t frames, double elapsed) const;

    const std::string path_;
    const VideoFormat format_;
    const uint64_t total_;
    const Style style_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    double next_;  // seconds, when to print again
};

}  // namespace tdkplay
