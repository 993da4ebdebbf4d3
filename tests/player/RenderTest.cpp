// Renderings: how many frames, which bytes, and what is left when they end early.
#include <gtest/gtest.h>

#include <array>
#include <csignal>

#include "player/render/Y4mWriter.h"
#include "tests/player/PlayerRun.h"
#include "tests/support/Wait.h"

namespace tdkplay {
namespace {

namespace fs = std::filesystem;

struct Video {
    std::string Header;
    size_t Frames = 0;
    size_t Rest = 0;       // bytes beyond the last whole frame
    bool IsMarked = true;  // each frame has its header
    bool IsLit = false;    // something is brighter than black
};

Video ReadY4m(const std::string& path, size_t width, size_t height) {
    const std::string bytes = ReadFile(path);
    const std::string mark = "FRAME\n";
    Video video;
    video.Header = bytes.substr(0, bytes.find('\n'));
    const size_t size = mark.size() + 3 * width * height;
    size_t at = video.Header.size() + 1;
    for (; at + size <= bytes.size(); at += size, ++video.Frames) {
        video.IsMarked = video.IsMarked && bytes.compare(at, mark.size(), mark) == 0;
        for (size_t i = 0; i < width * height; ++i)
            video.IsLit = video.IsLit || static_cast<unsigned char>(bytes[at + mark.size() + i]) > 100;
    }
    video.Rest = bytes.size() - std::min(at, bytes.size());
    return video;
}

std::string OutputOf(const std::string& command) {
    std::string out;
    std::FILE* pipe = popen(command.c_str(), "re");
    if (!pipe) return out;
    for (std::array<char, 256> part = {}; std::fgets(part.data(), part.size(), pipe);) out += part.data();
    pclose(pipe);
    return out;
}

bool HasFfmpeg() {
    return !OutputOf("command -v ffmpeg && command -v ffprobe").empty();
}

std::string Probe(const std::string& path, const std::string& stream, const std::string& entries) {
    return OutputOf("ffprobe -v error -count_frames -select_streams " + stream + " -show_entries stream=" + entries +
                    " -of csv=p=0 '" + path + "'");
}

class RenderTest : public PlayerRun {
protected:
    std::string Song(const std::string& name, int format, int rate, int channels, double seconds) const {
        const std::string path = folder_.File(name);
        EXPECT_TRUE(WriteSines(path, format, rate, channels, seconds));
        return path;
    }
    // With the encoder that is found there, into a.mp4.
    Outcome RenderWithPath(const std::string& folder) const {
        const std::string path = std::getenv("PATH");
        setenv("PATH", folder.c_str(), 1);
        const Outcome outcome = Run({"--render", "a.mp4", song_});
        setenv("PATH", path.c_str(), 1);
        return outcome;
    }
    // Longer than any machine takes until the signal comes, which may be when `out` has this many bytes.
    pid_t StartLong(const std::string& out, uintmax_t bytes) const {
        const std::string song = Song("long.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 8000, 1, 1200.0);
        const pid_t child = Start({"--render", out, "--size", "64x48", song});
        EXPECT_TRUE(tdkviz::test::WaitUntil([&] { return fs::exists(out) && fs::file_size(out) >= bytes; }));
        return child;
    }
};

TEST(Y4mWriter, ConvertsColoursWithWeightsIn256ths) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a.y4m");
    constexpr size_t kPixels = 67;  // no multiple of anything
    struct Case {
        DWORD Color;
        int Luma, Blue, Red;
    };
    for (const Case& c : {Case{0x000000, 16, 128, 128},
                          {0xFFFFFF, 235, 128, 128},
                          {0xFF0000, 82, 90, 240},
                          {0x00FF00, 144, 54, 34},
                          {0x0000FF, 41, 240, 110},
                          {0xFFFF00, 210, 16, 146}}) {
        Picture frame = {static_cast<int>(kPixels), 1, std::vector<DWORD>(kPixels, c.Color)};
        Y4mWriter writer(path, {frame.Width, frame.Height, 25});
        writer.Write(frame);
        writer.Finish();
        std::string expected = "YUV4MPEG2 W67 H1 F25:1 Ip A1:1 C444\nFRAME\n";
        for (const int value : {c.Luma, c.Blue, c.Red}) expected.append(kPixels, static_cast<char>(value));
        EXPECT_EQ(ReadFile(path), expected) << std::hex << c.Color;
    }
}

TEST_F(RenderTest, HasAFrameForEachBegunPartOfTheSong) {
    struct Case {
        double Seconds;
        int Rate;
        const char* Fps;
        std::vector<std::string> More;
        size_t Frames;
    };
    const std::vector<Case> cases = {
        {1.0, 44100, "30", {}, 30},
        {1.2345, 44100, "30", {}, 38},  // 37.03
        {1.0, 22050, "13", {"--effects", "off"}, 13},
        {0.001, 8000, "10", {}, 1},
        {0.3333, 48000, "24", {}, 8},                    // 7.998
        {2.0, 11025, "30", {"--duration", "0.51"}, 16},  // 15.3
        {0.5, 44100, "30", {"--duration", "20"}, 15},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Seconds);
        const std::string out = folder_.File("out.y4m");
        const std::string song = Song("a.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, c.Rate, 2, c.Seconds);
        std::vector<std::string> arguments = {"--render", out, "--size", "61x47", "--fps", c.Fps, song};
        arguments.insert(arguments.end(), c.More.begin(), c.More.end());
        RunWell(arguments);
        const Video video = ReadY4m(out, 61, 47);
        EXPECT_EQ(video.Header, "YUV4MPEG2 W61 H47 F" + std::string(c.Fps) + ":1 Ip A1:1 C444");
        EXPECT_EQ(video.Frames, c.Frames);
        EXPECT_EQ(video.Rest, 0u);
        EXPECT_TRUE(video.IsMarked);
    }
}

TEST_F(RenderTest, GivesTheSameBytesForTheSameSeedAndLeavesTheRegistryAlone) {
    const auto render = [this](const std::string& seed, const std::string& name) {
        const Outcome outcome = RunWell({"--render", folder_.File(name), "--size", "96x64", "--effects", "on", "--seed",
                                         seed, "--duration", "2", "--json", song_});
        EXPECT_NE(outcome.Out.find("{\"done\":true,"), std::string::npos) << outcome.Out;
        EXPECT_NE(outcome.Out.find("\"frames\":60,\"width\":96,\"height\":64,\"fps\":30,"), std::string::npos);
        return ReadFile(folder_.File(name));
    };
    const std::string first = render("1", "first.y4m");
    EXPECT_TRUE(ReadY4m(folder_.File("first.y4m"), 96, 64).IsLit);
    EXPECT_TRUE(first == render("1", "second.y4m"));
    EXPECT_FALSE(first == render("40000", "other.y4m"));
    EXPECT_FALSE(fs::exists(registry_));
}

TEST_F(RenderTest, WritesNumberedPictures) {
    const std::string out = folder_.File("new/pictures/");
    RunWell({"--render", out, "--size", "40x30", "--duration", "0.5", "--fps", "11", song_});
    size_t pictures = 0;
    for (const auto& entry : fs::directory_iterator(out)) pictures += entry.path().extension() == ".png";
    EXPECT_EQ(pictures, 6u);
    EXPECT_TRUE(fs::exists(out + "frame-000001.png") && fs::exists(out + "frame-000006.png"));
}

TEST_F(RenderTest, SaysInOneLineWhatIsWrong) {
    ExpectError(ExitCode::kNoEncoder, RenderWithPath(""));
    EXPECT_FALSE(fs::exists(folder_.File("a.mp4")));
    for (const std::string& out : {folder_.File("no/a.y4m"), folder_.File("no/a.mp4"), song_ + "/frames/"})
        ExpectError(ExitCode::kCannotWrite, Run({"--render", out, song_}));
}

TEST_F(RenderTest, MakesVideosThroughFfmpeg) {
    if (!HasFfmpeg()) GTEST_SKIP() << "no ffmpeg";
    const std::string odd = Song("odd: name.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, 1.2345);
    struct Case {
        std::string Name;
        std::vector<std::string> More;
        std::string Video;  // width, height, frames
        std::string Audio;
    };
    const std::vector<Case> cases = {
        {"a.mp4", {"--size", "96x64", odd}, "96,64,38\n", "aac\n"},
        {"b:c.mkv", {"--size", "97x63", odd}, "97,63,38\n", "flac\n"},
        {"c.mp4", {"--size", "96x64", "--audio", "off", odd}, "96,64,38\n", ""},
        {"d.MKV", {"--size", "96x64", "--duration", "1", "--fps", "10"}, "96,64,10\n", "flac\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Name);
        std::vector<std::string> arguments = {"--render", c.Name};
        arguments.insert(arguments.end(), c.More.begin(), c.More.end());
        RunWell(arguments);
        const std::string out = "file:" + folder_.File(c.Name);
        EXPECT_EQ(Probe(out, "v", "width,height,nb_read_frames"), c.Video);
        EXPECT_EQ(Probe(out, "a", "codec_name"), c.Audio);
    }
    const std::string first = ReadFile(folder_.File("b:c.mkv"));
    Run({"--render", "b:c.mkv", "--size", "97x63", odd});
    EXPECT_TRUE(first == ReadFile(folder_.File("b:c.mkv")));
}

TEST_F(RenderTest, TellsWhenFfmpegFails) {
    const std::string folder = folder_.File("bin");
    fs::create_directory(folder);
    std::ofstream(folder + "/ffmpeg") << "#!/bin/sh\necho no such codec >&2\nexit 1\n";
    fs::permissions(folder + "/ffmpeg", fs::perms::owner_all);
    const Outcome outcome = RenderWithPath(folder);
    ExpectError(ExitCode::kEncoderFailed, outcome);
    EXPECT_NE(outcome.Error.find("no such codec"), std::string::npos) << outcome.Error;
}

TEST_F(RenderTest, LeavesAPlayableFileAtAnInterrupt) {
    constexpr uintmax_t kFrameBytes = 3 * 64 * 48;
    const std::string raw = folder_.File("a.y4m");
    pid_t child = StartLong(raw, 3 * kFrameBytes);
    kill(child, SIGINT);
    ExpectError(ExitCode::kInterrupted, Finish(child));
    const Video video = ReadY4m(raw, 64, 48);
    EXPECT_GT(video.Frames, 0u);
    EXPECT_EQ(video.Rest, 0u);
    EXPECT_TRUE(video.IsMarked);

    if (!HasFfmpeg()) GTEST_SKIP() << "no ffmpeg";
    const std::string mp4 = folder_.File("a.mp4");
    child = StartLong(mp4, 1);
    kill(child, SIGINT);
    const Outcome outcome = Finish(child);
    ExpectError(ExitCode::kInterrupted, outcome);
    const std::string frames = Probe(mp4, "v", "nb_read_frames");
    EXPECT_GT(std::atoi(frames.c_str()), 0);
    EXPECT_NE(outcome.Error.find("has " + std::to_string(std::atoi(frames.c_str())) + " frames"), std::string::npos)
        << outcome.Error << frames;
    EXPECT_EQ(Probe(mp4, "a", "codec_name"), "aac\n");
}

}  // namespace
}  // namespace tdkplay
