// Files that libsndfile opens: WAV, AIFF, FLAC, Ogg Vorbis, Opus, MP3 and more.
#pragma once

#include <sndfile.h>

#include <array>
#include <vector>

#include "player/sound/Decoder.h"

namespace tdkplay {

// Mono stays mono; more than two channels are mixed down to two.
class SndfileDecoder final : public Decoder {
public:
    // Throws PlayerError with kUnknownFormat.
    explicit SndfileDecoder(const std::string& path);

    PcmFormat Format() const override { return format_; }
    uint64_t TotalFrames() const override { return totalFrames_; }
    std::string Title() const override;
    size_t Read(int16_t* samples, size_t frames) override;
    bool Seek(uint64_t frame) override;

private:
    struct Closer {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };
    // What a channel of the file gives to left and right.
    using Weights = std::array<float, 2>;
    static std::vector<Weights> DownmixWeights(int channels);
    void Convert(const float* in, size_t frames, int16_t* out) const;

    std::unique_ptr<SNDFILE, Closer> file_;
    PcmFormat format_;
    uint64_t totalFrames_ = 0;
    int fileChannels_ = 0;
    std::vector<Weights> downmix_;  // empty: channels pass as they are
    std::vector<float> decoded_;    // grows to the largest read and stays
};

}  // namespace tdkplay
