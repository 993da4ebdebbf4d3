#include "tests/listening/SoundServer.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/support/Wait.h"

namespace {

// What libpulse does inside isn't built for the thread sanitizer, which then sees races where there are none.
constexpr char kSanitizer[] = "ignore_noninstrumented_modules=1";

constexpr int kRate = 48000;
constexpr char kFormat[] = " format=s16le rate=48000 channels=2";

// A program in a process group of its own, which ends with this one at the latest.
pid_t Spawn(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child != 0) return child;
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, stream);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

void End(pid_t process) {
    if (kill(-process, SIGKILL) != 0) kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {
    return kSanitizer;
}

bool SoundServer::IsInstalled() {
    return std::system("command -v pulseaudio pacat pactl >/dev/null") == 0;
}

SoundServer::SoundServer() {
    setenv("PULSE_SERVER", ("unix:" + folder_.File("socket")).c_str(), 1);
    setenv("PULSE_COOKIE", folder_.File("cookie").c_str(), 1);
    setenv("PULSE_RUNTIME_PATH", folder_.File("run").c_str(), 1);
    setenv("PULSE_STATE_PATH", folder_.File("state").c_str(), 1);
    setenv("TSAN_OPTIONS", kSanitizer, 1);  // for the children
}

SoundServer::~SoundServer() {
    StopTones();
    Kill();
    for (const char* name : {"PULSE_SERVER", "PULSE_COOKIE", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"}) unsetenv(name);
}

bool SoundServer::Start() {
    const auto output = [](const std::string& name, const std::string& description) {
        return "module-null-sink sink_name=" + name + kFormat + " sink_properties=device.description=" + description;
    };
    process_ =
        Spawn({"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1", "--disable-shm=yes",
               "--high-priority=no", "--realtime=no", "-L", output("one", "Speakers"), "-L", output("two", "Headset"),
               "-L", "module-native-protocol-unix auth-anonymous=1 socket=" + folder_.File("socket")});
    return tdkviz::test::WaitUntil([this] { return Ask("list short sinks").find("two") != std::string::npos; });
}

void SoundServer::Kill() {
    if (process_ <= 0) return;
    End(process_);
    process_ = -1;
}

std::string SoundServer::Ask(const std::string& command) const {
    FILE* const pipe = popen(("pactl " + command + " 2>/dev/null").c_str(), "r");
    std::string answer;
    std::array<char, 256> part = {};
    while (pipe && fgets(part.data(), part.size(), pipe)) answer += part.data();
    if (pipe) pclose(pipe);
    return answer;
}

void SoundServer::Plug(const std::string& name) {
    folder_.Write(name + ".module", Ask("load-module module-null-sink sink_name=" + name + kFormat));
}

void SoundServer::Unplug(const std::string& name) const {
    std::ifstream file(folder_.File(name + ".module"));
    std::string module;
    file >> module;
    Ask("unload-module " + module);
}

void SoundServer::PlayTone(int hertz, const std::string& output) {
    std::string second;
    const double amplitude = hertz * hertz / 5000.0;
    for (int i = 0; i < kRate; ++i) {
        const auto sample = static_cast<int16_t>(std::lround(amplitude * std::sin(2.0 * M_PI * hertz * i / kRate)));
        for (int channel = 0; channel < 2; ++channel)
            second.append(reinterpret_cast<const char*>(&sample), sizeof(sample));
    }
    const std::string file = folder_.Write(std::to_string(hertz) + ".raw", second);
    tones_.push_back(Spawn({"sh", "-c",
                            "while :; do cat " + file + " || exit; done | pacat --raw --format=s16le --rate=48000 " +
                                "--channels=2 --latency-msec=50 --device=" + output}));
}

void SoundServer::StopTones() {
    for (const pid_t tone : tones_) End(tone);
    tones_.clear();
}
