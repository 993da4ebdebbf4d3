// What other programs spend on a picture: processor time, all threads, without what they spend on the audio.
#pragma once

#include <optional>
#include <string>

namespace bench {

// Seconds of processor time that a command of the shell takes, all threads, the best of some runs; nothing if it fails.
std::optional<double> BestCpuSeconds(const std::string& command);

// Stereo 16-bit audio of some seconds, a file that goes with the object.
class AudioFile {
public:
    static constexpr int kSeconds = 20;

    AudioFile();
    ~AudioFile();
    AudioFile(const AudioFile&) = delete;
    AudioFile& operator=(const AudioFile&) = delete;
    const std::string& Name() const { return name_; }

private:
    std::string name_;
};

// Seconds of processor time for one frame of 640 x 480 at 30 frames a second, the best of some runs; nothing if
// the program isn't installed or fails.
//   filter    of the ffmpeg program, with its options
//   element   of GStreamer
std::optional<double> FfmpegFrameSeconds(const std::string& filter);
std::optional<double> GStreamerFrameSeconds(const std::string& element);

}  // namespace bench
