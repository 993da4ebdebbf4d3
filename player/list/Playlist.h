// The order of the pieces: which one comes after which, and which ones are passed over. It opens nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/list/TrackList.h"

namespace tdkplay {

// Places count from 0 and stay what they are while the list lives.
class Playlist {
public:
    Playlist(std::vector<Track> tracks, bool loop);

    // Another order, always the same one for the same seed.
    void Shuffle(uint32_t seed);

    size_t Size() const { return entries_.size(); }
    const Track& At(size_t place) const { return entries_[place].Piece; }

    // None if there is none left; in a loop the ends of the list meet, and a piece that is alone follows itself.
    std::optional<size_t> First() const;
    std::optional<size_t> After(size_t place) const { return Step(place, true); }
    std::optional<size_t> Before(size_t place) const { return Step(place, false); }
    void SetTitle(size_t place, const std::string& title) { entries_[place].Piece.Title = title; }
    // The piece there can't be played and is passed over from now on.
    void Drop(size_t place) { entries_[place].IsDropped = true; }

private:
    struct Entry {
        Track Piece;
        bool IsDropped = false;
    };

    std::optional<size_t> Step(size_t place, bool forward) const;

    std::vector<Entry> entries_;
    bool loop_;
};

}  // namespace tdkplay
