#include "player/render/FfmpegPipe.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

#include "player/base/ExitCode.h"
#include "player/base/Spawn.h"

namespace tdkplay {
namespace {

constexpr char kProgram[] = "ffmpeg";
constexpr int kPipeBytes = 1 << 20;

// ffmpeg would take a name like "a:b.mp4" for an address.
std::string FileUrl(const std::string& path) {
    return "file:" + path;
}

void RequireWritable(const std::string& path) {
    std::string folder = std::filesystem::path(path).parent_path().string();
    if (folder.empty()) folder = ".";
    std::error_code ignored;
    const std::string& looked = std::filesystem::exists(path, ignored) ? path : folder;
    if (access(looked.c_str(), W_OK) != 0)
        throw PlayerError(ExitCode::kCannotWrite, path + ": " + std::strerror(errno));
}

// The sound goes on in silence to the end of the last frame, which lies a little behind the song's own.
std::vector<std::string> AudioArguments(const RenderTarget& target) {
    const char* const codec = target.Form == RenderTarget::Kind::kMp4 ? "aac" : "flac";
    return {"-map", "1:a:0", "-map_metadata", "1",    "-af",      "apad",     "-shortest",
            "-c:a", codec,   "-b:a",          "192k", "-flags:a", "+bitexact"};
}

std::vector<std::string> Arguments(const RenderTarget& target, const VideoFormat& format, const std::string& audio) {
    const std::string size = std::to_string(format.Width) + "x" + std::to_string(format.Height);
    // Colour at half resolution can't have an odd side.
    const bool isOdd = (format.Width | format.Height) & 1;
    std::vector<std::string> all = {kProgram,   "-nostdin",      "-v",  "error", "-y", "-f",
                                    "rawvideo", "-pixel_format", "bgr0"};
    const auto add = [&all](const std::vector<std::string>& more) { all.insert(all.end(), more.begin(), more.end()); };
    add({"-video_size", size, "-framerate", std::to_string(format.Rate), "-i", "pipe:0"});
    if (!audio.empty()) add({"-i", FileUrl(audio)});
    add({"-map", "0:v"});
    if (!audio.empty()) add(AudioArguments(target));
    add({"-vf", "scale=out_color_matrix=bt709:out_range=tv", "-c:v", "libx264", "-preset", "veryfast", "-crf", "18"});
    add({"-pix_fmt", isOdd ? "yuv444p" : "yuv420p", "-colorspace", "bt709", "-color_primaries", "bt709"});
    add({"-color_trc", "bt709", "-color_range", "tv", "-fflags", "+bitexact", "-flags:v", "+bitexact"});
    if (target.Form == RenderTarget::Kind::kMp4) add({"-movflags", "+faststart"});
    add({"-f", target.Form == RenderTarget::Kind::kMp4 ? "mp4" : "matroska", FileUrl(target.Path)});
    return all;
}

std::string LastLine(const std::string& path) {
    std::ifstream file(path);
    std::string last;
    for (std::string line; std::getline(file, line);)
        if (!line.empty()) last = line;
    return last;
}

}  // namespace

FfmpegPipe::FfmpegPipe(const RenderTarget& target, const VideoFormat& format, const std::string& audio,
                       const std::string& log)
    : log_(log) {
    RequireWritable(target.Path);
    Start(Arguments(target, format, audio));
}

FfmpegPipe::~FfmpegPipe() {
    Close();
}

void FfmpegPipe::Start(std::vector<std::string> arguments) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) throw PlayerError(ExitCode::kEncoderFailed, "ffmpeg: no pipe to it");
    fcntl(ends[1], F_SETPIPE_SZ, kPipeBytes);  // it is only faster
    Spawn ffmpeg;
    ffmpeg.LeaveGroup();
    ffmpeg.Give(ends[0], STDIN_FILENO);
    ffmpeg.Open(STDOUT_FILENO, "/dev/null", O_WRONLY);
    ffmpeg.Open(STDERR_FILENO, log_.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
    child_ = ffmpeg.Run(kProgram, std::move(arguments));
    const int error = errno;
    close(ends[0]);
    pipe_ = ends[1];
    if (child_ != 0) return;
    close(pipe_);
    throw PlayerError(ExitCode::kNoEncoder, std::string("videos need the program ffmpeg: ") + std::strerror(error) +
                                                "; .y4m and folders of pictures don't");
}

void FfmpegPipe::Write(const Picture& frame) {
    const auto* bytes = reinterpret_cast<const char*>(frame.Pixels.data());
    size_t left = frame.Pixels.size() * sizeof(DWORD);
    while (left != 0) {
        const ssize_t written = write(pipe_, bytes, left);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) {
            Close();
            Fail();
        }
        bytes += written;
        left -= static_cast<size_t>(written);
    }
}

void FfmpegPipe::Finish() {
    if (!Close()) Fail();
}

bool FfmpegPipe::Close() {
    if (child_ == 0) return true;
    close(pipe_);
    int status = -1;
    pid_t ended = 0;
    do ended = waitpid(child_, &status, 0);
    while (ended < 0 && errno == EINTR);
    const bool isGood = ended == child_ && status == 0;
    child_ = 0;
    return isGood;
}

void FfmpegPipe::Fail() const {
    const std::string reason = LastLine(log_);
    throw PlayerError(ExitCode::kEncoderFailed, "ffmpeg: " + (reason.empty() ? "it ended early" : reason));
}

}  // namespace tdkplay
