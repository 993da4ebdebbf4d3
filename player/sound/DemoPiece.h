// The project's own piece: about half a minute of music made from arithmetic, so that the player has
// something to show without any file. The same samples on every run.
#pragma once

#include <vector>

#include "player/sound/Decoder.h"

namespace tdkplay {

inline constexpr PcmFormat kDemoFormat = {44100, 2};
inline constexpr char kDemoTitle[] = "Demo piece";

// The whole piece in kDemoFormat.
std::vector<int16_t> MakeDemoPiece();

// Throws PlayerError with kCannotWrite.
void WriteDemoPiece(const std::string& path);

class DemoDecoder final : public Decoder {
public:
    DemoDecoder() : samples_(MakeDemoPiece()) {}

    PcmFormat Format() const override { return kDemoFormat; }
    uint64_t TotalFrames() const override { return samples_.size() / kDemoFormat.Channels; }
    std::string Title() const override { return kDemoTitle; }
    size_t Read(int16_t* samples, size_t frames) override;
    bool Seek(uint64_t frame) override;

private:
    std::vector<int16_t> samples_;
    size_t nextFrame_ = 0;
};

}  // namespace tdkplay
