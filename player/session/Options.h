// What the user has asked of this run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/base/PictureSettings.h"
#include "player/base/PictureSize.h"

namespace tdkplay {

inline constexpr size_t kMostViews = 16;  // side by side

struct SnapshotRequest {
    std::string Path;
    double At = 0;  // seconds heard
};

// How a check runs; for the player itself and its tests.
struct CheckTuning {
    std::string Only;    // this check and those that it can't do without; empty: all
    std::string Inside;  // in a process of the check's own: which one runs there
    double Effort = 1;   // less: fewer turns
};

struct Options {
    std::vector<std::string> Files;  // audio files, folders and lists; none: the project's own piece
    bool Shuffle = false;
    bool List = false;
    bool Devices = false;
    std::string MakeDemo;  // the file to write the project's own piece to
    bool PrintSettings = false;
    bool ResetSettings = false;
    // For the first views: name, file name, the beginning of one, or path. None: the last one, else the first.
    std::vector<std::string> Plugins;
    size_t Views = 1;
    std::optional<PictureSize> Size;  // absent: as the window was last, else the usual
    PictureSettings Picture;
    std::vector<SnapshotRequest> Snapshots;  // by time
    std::string Sheet;                       // the picture of all plug-ins over the song; empty: none
    std::string Render;                      // the video, or the folder for pictures; empty: none
    std::optional<uint32_t> Seed;            // where the changing effects begin
    bool RenderAudio = true;                 // the song goes into the video
    bool Json = false;                       // progress of a rendering or a check's report for machines
    std::string Check;                       // the plug-in to check; empty: none
    CheckTuning Checking;
    bool Headless = false;
    bool Window = false;
    bool Loop = false;
    std::optional<double> Duration;  // seconds
    std::string Output = "auto";
    std::optional<std::string> Device;   // as the sound server names it; empty: the server's choice
    std::optional<int> Volume;           // percent
    std::optional<int> Offset;           // milliseconds that the pictures come later
    std::optional<std::string> Capture;  // show what this device plays or records; empty: the default output

    PictureSize SizeOrUsual() const { return Size.value_or(PictureSize{}); }
};

}  // namespace tdkplay
