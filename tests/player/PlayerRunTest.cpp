// The player from outside: the staged program, its exit codes, its words and its pictures.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

#include "tests/player/PlayerRun.h"

namespace tdkplay {
namespace {

namespace fs = std::filesystem;

TEST_F(PlayerRun, SaysInOneLineWhatIsWrong) {
    const std::string letter = folder_.Write("letter.mp3", "Dear reader, this is no music.");
    const std::string picture = folder_.File("a.png");
    ExpectError(ExitCode::kUsage, Run({"--nonsense"}));
    fs::create_directory(folder_.File("nothing"));
    for (const std::string& file : {folder_.File("missing.wav"), folder_.File("nothing"), std::string("/dev/null")})
        ExpectError(ExitCode::kFileUnreadable, Run({file}));
    for (const std::string& file : {letter, folder_.Write("empty.wav", "")})
        ExpectError(ExitCode::kUnknownFormat, Run({file}));
    ExpectError(ExitCode::kUnknownPlugin, Run({"--headless", "--viz", "nobody", song_}));
    ExpectError(ExitCode::kNoDisplay, Run({"--window", song_}));
    ExpectError(ExitCode::kUsage, Run({"--headless", "--snapshot", picture, "--at", "5.5", song_}));
    ExpectError(ExitCode::kCannotWrite,
                Run({"--headless", "--snapshot", folder_.File("no/a.png"), "--at", "0.1", song_}));
    ExpectError(ExitCode::kUsage, Run({"--render", folder_.File("two.y4m"), song_, song_}));
    ExpectError(ExitCode::kCannotWrite, Run({"--make-demo", folder_.File("no/demo.wav")}));
    EXPECT_FALSE(fs::exists(picture));
    EXPECT_EQ(Run({"--help"}).Code, 0);
}

TEST_F(PlayerRun, TellsAMissingAddOnFromMissingPlugins) {
    const std::string player = CopyPlayer();
    ExpectError(ExitCode::kNoPlugins, Run({"--list"}, player));
    ExpectError(ExitCode::kNoPlugins, Run({"--headless", "--no-audio", song_}, player));
    fs::remove(folder_.File("copy/tdkviz.so"));
    ExpectError(ExitCode::kNoAddOn, Run({"--list"}, player));
}

TEST_F(PlayerRun, TakesTheSamePicturesEachTime) {
    const auto take = [this](const std::string& mark) {
        std::vector<std::string> arguments = {"--headless", "--size", "200x150", "--effects", "on", song_};
        for (const char* at : {"1.234", "4"})
            arguments.insert(arguments.end(), {"--snapshot", folder_.File(mark + at + ".png"), "--at", at});
        EXPECT_EQ(RunWell(arguments).Error, "");
    };
    take("first");
    take("second");
    for (const std::string at : {"1.234", "4"}) {
        SCOPED_TRACE(at);
        const Pixels picture = ReadPng(folder_.File("first" + at + ".png"));
        EXPECT_EQ(picture.Width, 200u);
        EXPECT_EQ(picture.Height, 150u);
        EXPECT_GT(picture.LitPart(), 0.005);
        EXPECT_EQ(ReadFile(folder_.File("first" + at + ".png")), ReadFile(folder_.File("second" + at + ".png")));
    }
}

TEST_F(PlayerRun, LeavesPicturesOfEachPluginWhereThereIsNoDisplay) {
    const Outcome outcome = RunWell({"--size", "160x120", song_});
    const std::string out = folder_.File("out");
    EXPECT_NE(outcome.Out.find(fs::canonical(out).string()), std::string::npos) << outcome.Out;
    size_t pictures = 0;
    for (const auto& entry : fs::directory_iterator(out)) {
        ++pictures;
        EXPECT_GT(ReadPng(entry.path()).LitPart(), 0.005) << entry.path();
    }
    EXPECT_EQ(pictures, 3 * PluginNames().size());
}

TEST_F(PlayerRun, EndsAtItsDurationAndAtAnInterrupt) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Run({"--headless", "--no-audio", "--duration", "0.5", song_}).Code, 0);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(seconds.count(), 0.49);
    EXPECT_LT(seconds.count(), 4.0);

    const pid_t child = Start({"--headless", "--no-audio", song_});
    // It leaves the signal to a thread of its own by then. While a program or a thread begins, all signals are blocked
    // for a moment.
    EXPECT_TRUE(WaitUntil([child] {
        std::ifstream status("/proc/" + std::to_string(child) + "/status");
        const std::string text{std::istreambuf_iterator<char>(status), {}};
        const size_t place = text.find("SigBlk:");
        const uint64_t blocked = place == std::string::npos ? 0 : std::stoull(text.substr(place + 7), nullptr, 16);
        const auto has = [blocked](int signal) { return (blocked >> (signal - 1) & 1) != 0; };
        return has(SIGINT) && !has(SIGALRM);
    }));
    kill(child, SIGINT);
    const auto asked = std::chrono::steady_clock::now();
    EXPECT_EQ(Finish(child).Code, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(3));
}

}  // namespace
}  // namespace tdkplay
