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

// Makes the piece as it is read, which costs little at a time, and keeps what was made.
class DemoDecoder final : public Decoder {
public:
    DemoDecoder();
    ~DemoDecoder() override;

    PcmFormat Format() const override { return kDemoFormat; }
    uint64_t TotalFrames() const override;
    std::string Title() const override { return kDemoTitle; }
    size_t Read(int16_t* samples, size_t frames) override;
    // Makes what lies before this place and isn't there yet, so that Read has no more to do than always.
    bool Seek(uint64_t frame) override;

private:
    class Music;
    void MakeUpTo(size_t frame);

    std::unique_ptr<Music> music_;  // that is still to come
    std::vector<int16_t> samples_;
    size_t nextFrame_ = 0;
};

}  // namespace tdkplay
