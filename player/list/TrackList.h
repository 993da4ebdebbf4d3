// What the words of a command line, or files that were dropped, stand for: the pieces to play.
#pragma once

#include <string>
#include <vector>

namespace tdkplay {

struct Track {
    std::string Path;   // empty: the project's own piece
    std::string Title;  // as a list names it; empty: as the file itself does
};

// Each path is an audio file, a folder (its audio files by name, then those of its subfolders) or a list (.m3u, .m3u8:
// one path a line, relative to the list). No path at all stands for the project's own piece. What holds nothing to
// play, or can't be read, becomes a track all the same, so that opening it tells why.
std::vector<Track> ReadTracks(const std::vector<std::string>& paths);

}  // namespace tdkplay
