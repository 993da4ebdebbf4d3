// How tdkplay ends, for scripts, and the exception that carries such an end to main.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>

namespace tdkplay {

enum class ExitCode : int {
    kDone = 0,            // played to the end, closed by the user, or did what was asked
    kInternalError = 1,   // a fault of the player itself
    kUsage = 2,           // an option that doesn't exist, or a value that doesn't fit
    kFileUnreadable = 3,  // the audio file or plug-in is missing or can't be read
    kUnknownFormat = 4,   // the audio file holds no audio that the player understands
    kUnknownPlugin = 5,   // --viz names no plug-in, or more than one
    kNoPlugins = 6,       // the folder Visualizations holds no plug-in
    kNoDisplay = 7,       // a window was asked for and there is no display
    kNoAddOn = 8,         // tdkviz can't be loaded or started
    kCannotWrite = 9,     // a picture, a video or the demo file can't be written
    kNoSound = 10,        // the sound output or device that was asked for doesn't open
    kNoSettings = 11,     // the stored settings can't be read, or not be cleared
    kNoEncoder = 12,      // a video was asked for and there is no program ffmpeg
    kEncoderFailed = 13,  // ffmpeg couldn't make the video
    kCheckFailed = 20,    // --check found a fault of the plug-in
    kInterrupted = 130,   // a rendering was stopped by the user; what it has written can be played
};

// One line for the user and the exit code that goes with it. Never crosses an interface.
class PlayerError : public std::runtime_error {
public:
    PlayerError(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
    ExitCode Code() const { return code_; }

private:
    ExitCode code_;
};

// For what doesn't end the run: one line on the error output.
inline void Warn(const PlayerError& error) {
    std::fprintf(stderr, "tdkplay: %s\n", error.what());
}

}  // namespace tdkplay
