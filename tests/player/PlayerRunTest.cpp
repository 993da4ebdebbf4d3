// The player from outside: the staged program, its exit codes, its words and its pictures.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <png.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

#include "player/ExitCode.h"
#include "tests/player/TestFiles.h"

namespace tdkplay {
namespace {

namespace fs = std::filesystem;

struct Outcome {
    int Code = -1;  // exit code; -1 if a signal ended it
    std::string Out;
    std::string Error;
};

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Runs the player without a display, in a folder of its own and with a registry of its own.
class PlayerRun : public testing::Test {
protected:
    void SetUp() override {
        if (!fs::exists(Stage() + "/tdkplay") || !fs::exists(Stage() + "/tdkviz.so"))
            GTEST_SKIP() << "nothing is staged";
        song_ = folder_.File("song.wav");
        ASSERT_TRUE(WriteSines(song_, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, 5.0));
    }

    static std::string Stage() { return STAGE_DIR; }

    pid_t Start(std::vector<std::string> arguments, const std::string& program = Stage() + "/tdkplay") const {
        arguments.insert(arguments.begin(), program);
        std::vector<char*> pointers;
        for (std::string& argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        const pid_t child = fork();
        if (child != 0) return child;
        const int out = open(folder_.File("stdout").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int error = open(folder_.File("stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(out, STDOUT_FILENO);
        dup2(error, STDERR_FILENO);
        unsetenv("DISPLAY");
        unsetenv("TDKVIZ_DISPLAY");
        setenv("TDKVIZ_REGISTRY", folder_.File("registry.db").c_str(), 1);
        if (chdir(folder_.File("").c_str()) == 0) execv(program.c_str(), pointers.data());
        _exit(127);
    }
    Outcome Finish(pid_t child) const {
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(folder_.File("stdout")),
                ReadFile(folder_.File("stderr"))};
    }
    Outcome Run(const std::vector<std::string>& arguments, const std::string& program = Stage() + "/tdkplay") const {
        return Finish(Start(arguments, program));
    }
    void ExpectError(ExitCode code, const Outcome& outcome) const {
        EXPECT_EQ(outcome.Code, static_cast<int>(code)) << outcome.Error;
        EXPECT_EQ(outcome.Error.rfind("tdkplay: ", 0), 0u) << outcome.Error;
        EXPECT_EQ(std::count(outcome.Error.begin(), outcome.Error.end(), '\n'), 1) << outcome.Error;
    }
    std::vector<std::string> PluginNames() const {
        std::vector<std::string> names;
        std::istringstream lines(Run({"--list"}).Out);
        for (std::string line; std::getline(lines, line);) names.push_back(line.substr(0, line.find('\t')));
        return names;
    }

    const TemporaryFolder folder_;
    std::string song_;
};

struct Pixels {
    unsigned Width = 0;
    unsigned Height = 0;
    std::vector<unsigned char> Bytes;  // red, green, blue
    // The part of all pixels that somebody would call lit.
    double LitPart() const {
        size_t lit = 0;
        for (size_t i = 0; i < Bytes.size(); i += 3) lit += Bytes[i] + Bytes[i + 1] + Bytes[i + 2] > 60;
        return static_cast<double>(lit) / std::max(1.0, static_cast<double>(Bytes.size()) / 3);
    }
};

Pixels ReadPng(const std::string& path) {
    Pixels pixels;
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return pixels;
    image.format = PNG_FORMAT_RGB;
    pixels.Bytes.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, pixels.Bytes.data(), 0, nullptr)) {
        pixels.Width = image.width;
        pixels.Height = image.height;
    }
    return pixels;
}

TEST_F(PlayerRun, SaysInOneLineWhatIsWrong) {
    const std::string letter = folder_.Write("letter.mp3", "Dear reader, this is no music.");
    const std::string picture = folder_.File("a.png");
    ExpectError(ExitCode::kUsage, Run({"--nonsense"}));
    for (const std::string& file : {folder_.File("missing.wav"), folder_.File("."), std::string("/dev/null")})
        ExpectError(ExitCode::kFileUnreadable, Run({file}));
    for (const std::string& file : {letter, folder_.Write("empty.wav", "")})
        ExpectError(ExitCode::kUnknownFormat, Run({file}));
    ExpectError(ExitCode::kUnknownPlugin, Run({"--headless", "--viz", "nobody", song_}));
    ExpectError(ExitCode::kNoDisplay, Run({"--window", song_}));
    ExpectError(ExitCode::kUsage, Run({"--headless", "--snapshot", picture, "--at", "5.5", song_}));
    ExpectError(ExitCode::kCannotWrite,
                Run({"--headless", "--snapshot", folder_.File("no/a.png"), "--at", "0.1", song_}));
    ExpectError(ExitCode::kCannotWrite, Run({"--make-demo", folder_.File("no/demo.wav")}));
    EXPECT_FALSE(fs::exists(picture));
    EXPECT_EQ(Run({"--help"}).Code, 0);
}

TEST_F(PlayerRun, TellsAMissingAddOnFromMissingPlugins) {
    const std::string copy = folder_.File("copy");
    fs::create_directory(copy);
    for (const char* file : {"tdkplay", "libtdkplatform.so"}) fs::copy(Stage() + "/" + file, copy + "/" + file);
    ExpectError(ExitCode::kNoAddOn, Run({"--list"}, copy + "/tdkplay"));
    fs::copy(Stage() + "/tdkviz.so", copy + "/tdkviz.so");
    ExpectError(ExitCode::kNoPlugins, Run({"--list"}, copy + "/tdkplay"));
    ExpectError(ExitCode::kNoPlugins, Run({"--headless", "--no-audio", song_}, copy + "/tdkplay"));
}

TEST_F(PlayerRun, ListsNamesAndPaths) {
    const Outcome outcome = Run({"--list"});
    EXPECT_EQ(outcome.Code, 0) << outcome.Error;
    std::istringstream lines(outcome.Out);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const size_t tab = line.find('\t');
        ASSERT_NE(tab, std::string::npos) << line;
        EXPECT_GT(tab, 0u);
        EXPECT_TRUE(fs::exists(line.substr(tab + 1))) << line;
    }
    EXPECT_GE(count, 3);
}

TEST_F(PlayerRun, TakesTheSamePicturesEachTime) {
    const std::vector<std::string> names = PluginNames();
    ASSERT_FALSE(names.empty());
    std::vector<std::string> arguments = {"--headless", "--size", "200x150", "--effects", "on", song_};
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        const auto take = [&](const std::string& mark) {
            auto all = arguments;
            for (const char* at : {"1.234", "4"})
                all.insert(all.end(), {"--snapshot", folder_.File(mark + at + ".png"), "--at", at});
            all.insert(all.end(), {"--viz", name});
            const Outcome outcome = Run(all);
            EXPECT_EQ(outcome.Code, 0) << outcome.Error;
            EXPECT_EQ(outcome.Error, "");
        };
        take("first");
        take("second");
        for (const char* at : {"1.234", "4"}) {
            const Pixels picture = ReadPng(folder_.File(std::string("first") + at + ".png"));
            EXPECT_EQ(picture.Width, 200u);
            EXPECT_EQ(picture.Height, 150u);
            EXPECT_GT(picture.LitPart(), 0.005) << "black at " << at;
            EXPECT_EQ(ReadFile(folder_.File(std::string("first") + at + ".png")),
                      ReadFile(folder_.File(std::string("second") + at + ".png")))
                << "at " << at;
        }
    }
}

TEST_F(PlayerRun, LeavesPicturesOfEachPluginWhereThereIsNoDisplay) {
    const Outcome outcome = Run({"--size", "160x120", song_});
    EXPECT_EQ(outcome.Code, 0) << outcome.Error;
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
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    kill(child, SIGINT);
    const auto asked = std::chrono::steady_clock::now();
    EXPECT_EQ(Finish(child).Code, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(3));
}

}  // namespace
}  // namespace tdkplay
