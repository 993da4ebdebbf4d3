// The playlist at work: opens its pieces, keeps the one that follows ready, and knows which one is heard.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "player/list/Playlist.h"
#include "player/sound/Playback.h"

namespace tdkplay {

struct PlayOrder {
    bool Shuffle = false;
    bool Loop = false;
};

// For the host's thread. A piece that can't be opened is told once, on the error output, and passed over.
class Jukebox {
public:
    Jukebox(const std::vector<std::string>& files, const PlayOrder& order);

    // Pieces on the list, those included that can't be played.
    size_t Size() const { return list_.Size(); }
    // The first piece that can be played, to make the Playback with that the others are for. Throws the PlayerError of
    // the last one if there is none.
    std::unique_ptr<Decoder> OpenFirst();

    // Another list in place of the one that plays. False, and all goes on as it was, if none of it can be played.
    bool Replace(const std::vector<std::string>& files, Playback& sound);
    // To the next piece (1) or to the one before (-1), at once. A piece that has been heard for a while begins again
    // before the one before it comes. Nothing happens beyond the ends of the list.
    void Step(int direction, Playback& sound);
    // Follows what is heard and sees to what comes next. True if another piece is heard now.
    bool Follow(Playback& sound);
    // Everything has been heard. False if nothing is left to play.
    bool OnEnd(Playback& sound);

    // Of the piece that is heard. The path is empty for the project's own piece.
    const Track& Heard() const { return list_.At(given_[heard_]); }

private:
    // The piece at this place, or the one after it in this direction if it can't be played. Without a decoder if none
    // can.
    Source Open(std::optional<size_t> place, int direction);
    std::unique_ptr<Decoder> OpenAt(size_t place);
    void Supply(Playback& sound);
    std::optional<size_t> Beside(size_t place, int direction) const;
    void Begin(Source source, Playback& sound);

    const PlayOrder order_;
    Playlist list_;
    // The places in the list of all pieces that were handed out. Which one is heard is told by its number here.
    std::vector<size_t> given_;
    size_t heard_ = 0;
};

}  // namespace tdkplay
