// Plug-ins beside the player, of the user's own, and named on the command line, as the staged program lists and shows
// them.
#include "player/host/PluginFolders.h"

#include <map>

#include "tests/player/PlayerRun.h"

namespace tdkplay {
namespace {

namespace fs = std::filesystem;

class PluginFoldersRun : public PlayerRun {
protected:
    void SetUp() override {
        PlayerRun::SetUp();
        fs::create_directory(temporary_);
        setenv("TMPDIR", temporary_.c_str(), 1);
    }
    void TearDown() override {
        EXPECT_TRUE(fs::is_empty(temporary_)) << "the folder of a run is left";
        unsetenv("TMPDIR");
    }

    // How often each file is listed, by its path.
    std::map<std::string, int> Listed(const std::vector<std::string>& arguments = {"--list"}) const {
        const Outcome outcome = RunWell(arguments);
        EXPECT_EQ(outcome.Error, "");
        std::map<std::string, int> paths;
        std::istringstream lines(outcome.Out);
        for (std::string line; std::getline(lines, line);) ++paths[line.substr(line.find('\t') + 1)];
        return paths;
    }
    static std::string Shared(const std::string& file) { return Stage() + "/Visualizations/" + file; }

    const std::string temporary_ = folder_.File("temporary");
    const std::string own_ = dataHome_ + "/tdkviz/Visualizations";
};

TEST_F(PluginFoldersRun, TheUsersOwnJoinThoseOfThePlayer) {
    const std::map<std::string, int> before = Listed();
    EXPECT_FALSE(fs::exists(dataHome_)) << "made unasked";

    fs::create_directories(own_ + "/experiments");
    EXPECT_EQ(Listed(), before);
    fs::copy(Shared("Flow.tkv"), own_ + "/Flow.tkv");
    fs::copy(Shared("Ink.tkv"), own_ + "/experiments/Ink.tkv");
    std::map<std::string, int> expected = before;
    for (const char* file : {"/Flow.tkv", "/experiments/Ink.tkv"}) expected[fs::canonical(own_ + file)] = 1;
    EXPECT_EQ(Listed(), expected);
    EXPECT_EQ(std::distance(fs::directory_iterator(own_), {}), 2) << "something of the player's was put there";

    fs::remove_all(own_);
    for (const std::string& target : {Stage() + "/Visualizations", Stage()}) {
        fs::create_directory_symlink(target, own_);
        EXPECT_EQ(Listed(), before) << "the same files on two ways: " << target;
        fs::remove(own_);
    }
    fs::create_directory_symlink(folder_.File("nowhere"), own_);
    EXPECT_EQ(Listed(), before);
}

TEST_F(PluginFoldersRun, AFileElsewhereIsShownByItsPath) {
    const std::string file = folder_.File("Stray.tkv"), picture = folder_.File("a.png");
    fs::copy(Shared("Flow.tkv"), file);
    const std::vector<std::string> snapshot = {"--headless", "--snapshot", picture, "--at", "0.2", song_, "--viz"};
    for (const std::string& path : {file, std::string("./Stray.tkv"), Shared("Flow.tkv")}) {
        std::vector<std::string> arguments = snapshot;
        arguments.push_back(path);
        EXPECT_EQ(Run(arguments).Code, 0) << path;
        EXPECT_TRUE(fs::remove(picture)) << path;
    }
    EXPECT_EQ(Listed({"--list", "--viz", file})[fs::canonical(file)], 1);
    const std::string other = folder_.File("other/" + fs::path(file).filename().string());
    fs::create_directory(folder_.File("other"));
    fs::copy(file, other);
    std::map<std::string, int> both = Listed({"--list", "--viz", file, "--viz", other});
    EXPECT_EQ(both[fs::canonical(file)], 1);
    EXPECT_EQ(both[fs::canonical(other)], 1) << "of the same name";
    EXPECT_EQ(Listed({"--list", "--viz", Shared("Flow.tkv")})[fs::canonical(Shared("Flow.tkv"))], 1);
    std::vector<std::string> missing = snapshot;
    missing.push_back(folder_.File("Missing.tkv"));
    ExpectError(ExitCode::kUnknownPlugin, Run(missing));
}

TEST_F(PluginFoldersRun, WithoutAFolderForTheRunTheRestGoesOn) {
    const std::map<std::string, int> before = Listed();
    fs::create_directories(own_);
    setenv("TMPDIR", folder_.File("nowhere").c_str(), 1);
    const Outcome outcome = Run({"--list"});
    EXPECT_EQ(outcome.Code, 0);
    EXPECT_EQ(static_cast<size_t>(std::count(outcome.Out.begin(), outcome.Out.end(), '\n')), before.size());
    EXPECT_NE(outcome.Error.find("only the plug-ins beside the player"), std::string::npos) << outcome.Error;
}

}  // namespace
}  // namespace tdkplay
