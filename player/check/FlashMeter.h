// Counts flashes in a row of pictures, as the rules for people with photosensitive epilepsy count them: a pair of
// opposite changes of the relative luminance by a tenth of the greatest or more, the darker state below 0.8, over more
// than a quarter of the picture at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace tdkplay::check {

class FlashMeter {
public:
    static constexpr int kMostFlashes = 3;  // in any second

    // `rate` pictures a second.
    explicit FlashMeter(int rate);

    // Pixels 0x00RRGGBB; all pictures have the same size.
    void Add(const std::vector<uint32_t>& pixels, int width, int height);
    // The most within any second so far.
    double MostFlashes() const { return mostSwings_ / 2.0; }

private:
    struct Block {
        float Extreme = 0;  // of the luminance since the last swing
        bool IsRising = true;
        int LastSwing = -1;  // picture; -1: none yet
    };

    void Follow(Block& block, float luminance) const;

    const int rate_;
    int picture_ = 0;
    std::vector<Block> blocks_;
    std::deque<int> swings_;  // of the picture as a whole, within the last second
    bool lastWasRise_ = false;
    size_t mostSwings_ = 0;
};

}  // namespace tdkplay::check
