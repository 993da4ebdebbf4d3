// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tdkplay {

// What changes the picture; absent: as the user has set it.
struct PictureSettings {
    std::optional<uint32_t> FrameRate;  // 10 to 30 a second
    std::optional<bool> Effects;
    std::optional<bool> Randomize;
};

struct SnapshotRequest {
    std::string Path;
    double At = 0;  // seconds heard
};

struct Options {
    std::string File;  // empty: the project's own piece
    bool List = false;
    std::string MakeDemo;  // the file to write the project's own piece to
    std::string Plugin;    // name, file name or the beginning of one; empty: the first
    int Width = 640;
    int Height = 480;
    PictureSettings Picture;
    std::vector<SnapshotRequest> Snapshots;  // by time
    bool Headless = false;
    bool Window = false;
    bool Loop = false;
    std::optional<double> Duration;  // seconds
    std::string Output = "auto";

    // Reads the command line. For --help and --version prints the text and gives nothing. Throws
    // PlayerError with kUsage.
    static std::optional<Options> Parse(int argc, const char* const* argv);
};

}  // namespace tdkplay
