// Video through the program ffmpeg, which gets the frames as they are through a pipe and the song as a file.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "player/render/FrameSink.h"
#include "player/render/RenderTarget.h"

namespace tdkplay {

class FfmpegPipe final : public FrameSink {
public:
    // Starts ffmpeg from the PATH. `audio` is the file with the sound, empty for a silent video; `log` a file that
    // takes what ffmpeg has to say. Throws PlayerError with kNoEncoder, kEncoderFailed or kCannotWrite.
    FfmpegPipe(const RenderTarget& target, const VideoFormat& format, const std::string& audio, const std::string& log);
    // Waits until ffmpeg has completed the file.
    ~FfmpegPipe() override;
    FfmpegPipe(const FfmpegPipe&) = delete;
    FfmpegPipe& operator=(const FfmpegPipe&) = delete;

    void Write(const Picture& frame) override;
    void Finish() override;

private:
    void Start(std::vector<std::string> arguments);
    // Whether ffmpeg said that all went well.
    bool Close();
    [[noreturn]] void Fail() const;

    const std::string log_;
    int pipe_ = -1;    // ffmpeg's standard input
    pid_t child_ = 0;  // 0: none, or waited for
};

}  // namespace tdkplay
