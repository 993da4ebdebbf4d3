#include "bench/PeerProgram.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace bench {

namespace {

constexpr uint32_t kRate = 44100;
constexpr int kFramesPerSecond = 30;
constexpr int kRuns = 5;

double SecondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// The processor time of a command of the shell; nothing if it fails.
std::optional<double> CpuSeconds(const std::string& command) {
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_RDWR);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, stream);
        execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) return std::nullopt;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
    return SecondsOf(usage.ru_utime) + SecondsOf(usage.ru_stime);
}

// With the picture less without it.
std::optional<double> FrameSeconds(const std::string& with, const std::string& without) {
    const std::optional<double> whole = BestCpuSeconds(with);
    const std::optional<double> audioOnly = whole ? BestCpuSeconds(without) : std::nullopt;
    if (!audioOnly || *whole <= *audioOnly) return std::nullopt;
    return (*whole - *audioOnly) / (AudioFile::kSeconds * kFramesPerSecond);
}

}  // namespace

std::optional<double> BestCpuSeconds(const std::string& command) {
    std::optional<double> best;
    for (int run = 0; run < kRuns; ++run) {
        const std::optional<double> once = CpuSeconds(command);
        if (!once) return std::nullopt;
        best = std::min(best.value_or(*once), *once);
    }
    return best;
}

AudioFile::AudioFile() {
    char name[] = "/tmp/tdkbenchXXXXXX";
    const int file = mkstemp(name);
    name_ = name;
    std::vector<int16_t> samples(size_t{2} * kRate * kSeconds);
    for (size_t i = 0; i < samples.size(); ++i) {
        const double t = static_cast<double>(i / 2) / kRate;
        samples[i] = static_cast<int16_t>(9000 * std::sin(2000 * t) + 9000 * std::sin(300 * t * (1 + i % 2)));
    }
    const auto bytes = static_cast<uint32_t>(samples.size() * sizeof(int16_t));
    // RIFF WAVE, little-endian: 16-bit PCM, two channels.
    const uint32_t header[] = {0x46464952, bytes + 36, 0x45564157, 0x20746D66, 16,   0x00020001,
                               kRate,      kRate * 4,  0x00100004, 0x61746164, bytes};
    const bool written = write(file, header, sizeof header) == sizeof header &&
                         write(file, samples.data(), bytes) == static_cast<ssize_t>(bytes);
    if (!written) name_.clear();
    close(file);
}

AudioFile::~AudioFile() {
    if (!name_.empty()) unlink(name_.c_str());
}

std::optional<double> FfmpegFrameSeconds(const std::string& filter) {
    const AudioFile audio;
    const std::string open = "ffmpeg -nostdin -v error -i " + audio.Name();
    return FrameSeconds(open + " -filter_complex '[0:a]" + filter + "' -f null -", open + " -f null -");
}

std::optional<double> GStreamerFrameSeconds(const std::string& element) {
    const AudioFile audio;
    const std::string open = "gst-launch-1.0 -q filesrc location=" + audio.Name() + " ! wavparse ! audioconvert ! ";
    return FrameSeconds(open + element + " ! video/x-raw,width=640,height=480,framerate=30/1 ! fakesink sync=false",
                        open + "fakesink sync=false");
}

}  // namespace bench
