// The staged player as a whole: many views at once, its start, its memory. Nothing is held against these numbers.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <thread>

#include "bench/Goals.h"
#include "bench/PeerProgram.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr char kPlayer[] = STAGE_DIR "/tdkplay";
constexpr int kSeconds = 5;  // of audio
constexpr int kFramesPerSecond = 30;
constexpr int kViews = 16;
constexpr char kRoomForViews[] = "1286x966";  // 4 x 4 views of 320x240 with 2 pixels between them
constexpr char kRoomForOneView[] = "320x240";

// A file that goes with the object.
class PictureFile {
public:
    PictureFile() {
        const int file = mkstemp(name_);
        if (file >= 0) close(file);
    }
    ~PictureFile() { unlink(name_); }
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;
    std::string Name() const { return name_; }

private:
    char name_[24] = "/tmp/tdkbenchXXXXXX";
};

// On the stepped clock up to this second, and a picture of it.
std::string PlayTo(double second, int views, const std::string& room, const PictureFile& picture) {
    static const bench::AudioFile song;
    return std::string(kPlayer) + " --headless --effects on --fps " + std::to_string(kFramesPerSecond) + " --views " +
           std::to_string(views) + " --size " + room + " --snapshot " + picture.Name() + " --at " +
           std::to_string(second) + " " + song.Name();
}

// Milliseconds of processor time for a second of audio: a long run less a short one.
std::optional<double> CostOfASecond(int views, const std::string& room) {
    const PictureFile picture;
    const std::optional<double> longRun = bench::BestCpuSeconds(PlayTo(kSeconds, views, room, picture));
    const std::optional<double> shortRun = longRun ? bench::BestCpuSeconds(PlayTo(0, views, room, picture)) : longRun;
    if (!shortRun || *longRun <= *shortRun) return std::nullopt;
    return (*longRun - *shortRun) / kSeconds * 1e3;
}

std::optional<double> CostOfViews() {
    static const auto cost = CostOfASecond(kViews, kRoomForViews);
    return cost;
}

std::optional<double> CostOfOneView() {
    static const auto cost = CostOfASecond(1, kRoomForOneView);
    return cost;
}

std::optional<double> Divided(std::optional<double> cost, double divisor) {
    if (cost) *cost /= divisor;
    return cost;
}

std::string PlayToFirstFrame(const PictureFile& picture) {
    constexpr double kFirstFrame = 0.05;  // seconds, a frame and a little more
    return PlayTo(kFirstFrame, 1, "640x480", picture);
}

std::optional<double> CostOfStart() {
    const PictureFile picture;
    std::optional<double> seconds = bench::BestCpuSeconds(PlayToFirstFrame(picture));
    if (seconds) *seconds *= 1e3;
    return seconds;
}

std::optional<double> TimeOfStart() {
    constexpr int kRuns = 5;
    const PictureFile picture;
    const std::string command = PlayToFirstFrame(picture) + " 2>/dev/null";
    std::optional<double> best;
    for (int run = 0; run < kRuns; ++run) {
        const auto start = Clock::now();
        if (std::system(command.c_str()) != 0) return std::nullopt;
        const double once = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        best = std::min(best.value_or(once), once);
    }
    return best;
}

pid_t StartPlaying() {
    const pid_t child = fork();
    if (child != 0) return child;
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, stream);
    execl(kPlayer, kPlayer, "--headless", "--no-audio", "--loop", "--size", "640x480", nullptr);
    _exit(127);
}

// The lines of /proc/PID/smaps_rollup in MB.
std::map<std::string, double> MemoryWhilePlaying() {
    constexpr std::chrono::seconds kSettled{3};
    std::map<std::string, double> memory;
    const pid_t player = StartPlaying();
    if (player < 0) return memory;
    std::this_thread::sleep_for(kSettled);
    std::ifstream lines("/proc/" + std::to_string(player) + "/smaps_rollup");
    for (std::string line; std::getline(lines, line);) {
        char name[32] = {};
        double kilobytes = 0;
        if (std::sscanf(line.c_str(), "%31[^:]: %lf kB", name, &kilobytes) == 2) memory[name] = kilobytes / 1024;
    }
    kill(player, SIGINT);
    int status = 0;
    waitpid(player, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) memory.clear();
    return memory;
}

std::optional<double> Memory(const std::string& kind) {
    static const std::map<std::string, double> memory = MemoryWhilePlaying();
    const auto found = memory.find(kind);
    return found == memory.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

void bench::AddPlayerMeasurements() {
    const std::string views = "16 views of 320x240 at 30 frames a second";
    AddMeasurement({views + ", for a second of audio", "ms", CostOfViews});
    AddMeasurement({views + ", a frame of all", "ms", [] { return Divided(CostOfViews(), kFramesPerSecond); }});
    AddMeasurement(
        {views + ", a frame of one", "ms", [] { return Divided(CostOfViews(), kFramesPerSecond * kViews); }});
    AddMeasurement({"1 view of 320x240, a frame", "ms", [] { return Divided(CostOfOneView(), kFramesPerSecond); }});
    AddMeasurement({"Start, first picture of 640x480, end: processor time", "ms", CostOfStart});
    AddMeasurement({"Start, first picture of 640x480, end: time", "ms", TimeOfStart});
    AddMeasurement({"Memory of a player at work, 640x480, resident", "MB", [] { return Memory("Rss"); }});
    AddMeasurement({"Memory of a player at work, 640x480, its share", "MB", [] { return Memory("Pss"); }});
}
