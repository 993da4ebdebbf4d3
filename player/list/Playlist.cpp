#include "player/list/Playlist.h"

#include <random>
#include <utility>

namespace tdkplay {

Playlist::Playlist(std::vector<Track> tracks, bool loop) : loop_(loop) {
    for (Track& track : tracks) entries_.push_back({std::move(track)});
}

// Not the library's own shuffle, whose order is each library's affair.
void Playlist::Shuffle(uint32_t seed) {
    std::mt19937 random(seed);
    for (size_t left = entries_.size(); left > 1; --left) std::swap(entries_[left - 1], entries_[random() % left]);
}

std::optional<size_t> Playlist::First() const {
    for (size_t place = 0; place < entries_.size(); ++place)
        if (!entries_[place].IsDropped) return place;
    return std::nullopt;
}

std::optional<size_t> Playlist::Step(size_t place, bool forward) const {
    for (size_t tries = 0; tries < entries_.size(); ++tries) {
        const bool isAtEnd = place == (forward ? entries_.size() - 1 : 0);
        if (isAtEnd && !loop_) return std::nullopt;
        place = (place + (forward ? 1 : entries_.size() - 1)) % entries_.size();
        if (!entries_[place].IsDropped) return place;
    }
    return std::nullopt;
}

}  // namespace tdkplay
