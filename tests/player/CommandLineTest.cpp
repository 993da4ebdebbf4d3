#include "player/CommandLine.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

std::optional<Options> Parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "tdkplay");
    return ParseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLine, TakesWhatIsGivenAndLeavesTheRestToTheUser) {
    const std::optional<Options> plain = Parse({});
    ASSERT_TRUE(plain);
    EXPECT_TRUE(plain->Files.empty());
    EXPECT_FALSE(plain->Picture.FrameRate || plain->Picture.Effects || plain->Picture.Randomize || plain->Duration);
    EXPECT_FALSE(plain->Size || plain->Volume || plain->Device);
    EXPECT_EQ(plain->Output, "auto");

    const std::optional<Options> full =
        Parse({"--viz",      "bars",        "--size", "320x240",    "--fps",     "25",         "--effects",
               "ON",         "--randomize", "off",    "--snapshot", "b.png",     "--at",       "7.5",
               "--snapshot", "a.png",       "--at",   "2",          "song.flac", "--headless", "--no-audio"});
    ASSERT_TRUE(full);
    EXPECT_EQ(full->Files, std::vector<std::string>{"song.flac"});
    EXPECT_EQ(full->Plugins, std::vector<std::string>{"bars"});
    EXPECT_EQ(full->Size->Text(), "320x240");
    EXPECT_EQ(full->Picture.FrameRate, 25u);
    EXPECT_EQ(full->Picture.Effects, true);
    EXPECT_EQ(full->Picture.Randomize, false);
    EXPECT_EQ(full->Output, "silent");
    ASSERT_EQ(full->Snapshots.size(), 2u);
    EXPECT_EQ(full->Snapshots[0].Path, "a.png") << "by time";
    EXPECT_EQ(full->Snapshots[1].At, 7.5);
}

TEST(CommandLine, SwitchesStandAloneOrTakeAValue) {
    const std::optional<Options> alone = Parse({"--effects", "song.flac", "--randomize"});
    ASSERT_TRUE(alone);
    EXPECT_EQ(alone->Files, std::vector<std::string>{"song.flac"});
    EXPECT_EQ(alone->Picture.Effects, true);
    EXPECT_EQ(alone->Picture.Randomize, true);
    EXPECT_EQ(Parse({"--effects=off"})->Picture.Effects, false);
    EXPECT_EQ(Parse({"--randomize", "Off", "a.wav"})->Picture.Randomize, false);
}

TEST(CommandLine, CapturesWhatIsNamedOrTheDefault) {
    EXPECT_FALSE(Parse({})->Capture);
    EXPECT_EQ(Parse({"--capture"})->Capture, "");
    EXPECT_EQ(Parse({"--capture", "default"})->Capture, "");
    EXPECT_EQ(Parse({"--capture", "headset", "--offset", "-500"})->Capture, "headset");
    EXPECT_EQ(Parse({"--offset", "-500"})->Offset, -500);
}

TEST(CommandLine, RefusesWhatMakesNoSenseInOneLine) {
    const char* const cases[] = {"--nonsense",
                                 "--fps 9",
                                 "--fps 31",
                                 "--fps fast",
                                 "--size 640",
                                 "--size 640x480x2",
                                 "--size 8x480",
                                 "--size 640x9000",
                                 "--size 99999999999x10",
                                 "--effects=maybe",
                                 "--snapshot a.png",
                                 "--at 3",
                                 "--snapshot a.png --at -1",
                                 "--snapshot a.png --at nan",
                                 "--snapshot a.png --at 5 --duration 4",
                                 "--duration -1",
                                 "--headless --window",
                                 "--output gramophone",
                                 "--no-audio --output pulse",
                                 "--volume 101",
                                 "--volume -1",
                                 "--device a --no-audio",
                                 "--settings --reset-settings",
                                 "a.wav --capture",
                                 "--capture one two",
                                 "--capture --render a.mp4",
                                 "--capture --snapshot a.png --at 1",
                                 "--capture --device a",
                                 "--offset 2001",
                                 "--offset -501",
                                 "--render a.mp4 --offset 5",
                                 "--render a.avi",
                                 "--render a.mp4 --loop",
                                 "--render a.mp4 --snapshot a.png --at 1",
                                 "--render a.mp4 --seed -1",
                                 "--seed 1",
                                 "--views 0",
                                 "--views 17",
                                 "--views 1 --viz a --viz b",
                                 "--sheet a.png --views 2",
                                 "--sheet a.png --render a.mp4",
                                 "--json"};
    for (const std::string line : cases) {
        SCOPED_TRACE(line);
        try {
            std::istringstream words(line);
            const std::vector<std::string> split{std::istream_iterator<std::string>(words), {}};
            std::vector<const char*> arguments;
            for (const std::string& word : split) arguments.push_back(word.c_str());
            Parse(arguments);
            ADD_FAILURE() << "was taken";
        } catch (const PlayerError& error) {
            EXPECT_EQ(error.Code(), ExitCode::kUsage);
            EXPECT_NE(std::string(error.what()), "");
            EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << error.what();
        }
    }
}

}  // namespace
}  // namespace tdkplay
