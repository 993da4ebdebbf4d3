// The player's check of plug-ins from outside: each fault is told as what it is, and sound plug-ins pass.
#include <gtest/gtest.h>

#include <regex>

#include "tests/player/PlayerRun.h"

namespace tdkplay {
namespace {

// The fewest turns that a check does.
constexpr char kLeastEffort[] = "0.01";

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

struct Told {
    std::string Result, Reason;
};

class CheckTest : public PlayerRun {
protected:
    static std::string PluginFile(const std::string& name) { return TEST_PLUGIN_DIR "/" + name + ".tkv"; }

    Outcome Check(const std::string& file, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments = {"--check", file, "--json", "--check-effort", kLeastEffort};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(arguments);
    }
    static Told Find(const Outcome& outcome, const std::string& check) {
        const std::regex entry("\"name\":\"" + check + R"re(","result":"(\w+)","reason":"((?:[^"\\]|\\.)*)")re");
        std::smatch found;
        if (!std::regex_search(outcome.Out, found, entry)) return {};
        return {found[1], found[2]};
    }
    static int CountFailed(const Outcome& outcome) {
        std::smatch found;
        return std::regex_search(outcome.Out, found, std::regex(R"re("failed":(\d+))re")) ? std::stoi(found[1]) : -1;
    }
};

struct Fault {
    const char* Plugin;
    const char* Check;
    const char* Result;
    const char* Reason;  // a part of it
    bool WorksSanitized = true;
};

std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
    return stream << fault.Plugin;
}

class FaultTest : public CheckTest, public testing::WithParamInterface<Fault> {};

TEST_P(FaultTest, IsToldAsWhatItIs) {
    const Fault& fault = GetParam();
    if (kIsSanitized && !fault.WorksSanitized) GTEST_SKIP() << "the sanitizer comes first";
    const Outcome outcome = Check(PluginFile(fault.Plugin), {"--check-only", fault.Check});
    const Told told = Find(outcome, fault.Check);
    EXPECT_EQ(told.Result, fault.Result) << outcome.Out << outcome.Error;
    EXPECT_NE(told.Reason.find(fault.Reason), std::string::npos) << told.Reason;
    const bool fails = told.Result == "fail";
    EXPECT_EQ(outcome.Code, fails ? static_cast<int>(ExitCode::kCheckFailed) : 0);
    EXPECT_EQ(CountFailed(outcome), fails ? 1 : 0) << outcome.Out;
}

const Fault kFaults[] = {
    {"Unresolved", "library", "fail", "undefined symbol: FunctionThatNobodyHas"},
    {"NoExport", "export", "fail", "doesn't export MPACreateVisualization"},
    {"FactoryNull", "object", "fail", "gives no object"},
    {"ExitsInInitialize", "object", "fail", "ended the whole process with exit code 3 in Initialize"},
    {"NoTerminator", "description", "fail", "without a terminator"},
    {"WideFlag", "description", "fail", "wrote 3 bytes past the end of the byte for wantsSpectrum"},
    {"CrashInDraw", "frames", "fail", "crashed with SIGSEGV in Draw 320x240 at address 0x0", false},
    {"Trap", "frames", "fail", "crashed with SIGTRAP in Draw 320x240"},
    {"HangInDraw", "frames", "fail", "hangs: Draw 320x240"},
    {"Throws", "frames", "fail", "threw std::runtime_error (no such colour) from Draw"},
    {"CrashAtOnePixel", "sizes", "fail", "aborted in Draw 1x1"},
    {"RowTooMany", "sizes", "fail", "wrote 4 bytes past the end of the picture, in Draw 1x1"},
    {"BeforeTheStart", "sizes", "fail", "wrote 4 bytes before the start of the picture, in Draw 1x1"},
    {"IgnoresPitch", "rows", "fail", "wrote between the rows, in Draw 3x5"},
    {"WritesFrame", "analysis-frame", "fail", "wrote into the analysis frame"},
    {"LeaksEachFrame", "leak-per-frame", "fail", "bytes each frame", false},
    {"LeaksEachStart", "leak-per-start", "fail", "loses 1 file descriptor each start"},
    {"ThreadLeftBehind", "own-threads", "fail", "leaves 1 of its threads running"},
    {"ModalDialog", "configure", "pass", "the dialog opens and closes"},
    {"FloatingPointMode", "process", "fail", "changes the floating point rounding of the frame thread"},
    {"ChangesFolder", "process", "fail", "changes the working directory, to /"},
    {"NoWindow", "window", "fail", "paints nothing into its window"},
    {"Slow", "speed", "fail", "too slow", false},
    {"Flashing", "flashes", "warning", "flashes of the picture within a second"},
    {"Black", "picture", "warning", "all black"},
};

INSTANTIATE_TEST_SUITE_P(All, FaultTest, testing::ValuesIn(kFaults),
                         [](const auto& fault) { return std::string(fault.param.Plugin); });

TEST_F(CheckTest, OneFaultLeavesTheOtherChecksAlone) {
    const Outcome outcome = Check(PluginFile("CrashAtOnePixel"));
    EXPECT_EQ(outcome.Code, static_cast<int>(ExitCode::kCheckFailed));
    for (const char* check : {"frames", "sounds", "start-stop", "leak-per-frame", "repeatable"})
        EXPECT_EQ(Find(outcome, check).Result, "pass") << check << outcome.Out;
    EXPECT_EQ(Find(outcome, "sizes").Result, "fail");
    EXPECT_EQ(Find(outcome, "window").Result, "skipped");
}

TEST_F(CheckTest, WhatCannotBeTriedIsSkipped) {
    const Outcome outcome = Check(PluginFile("CrashInDraw"));
    EXPECT_EQ(Find(outcome, "frames").Result, "fail");
    EXPECT_EQ(Find(outcome, "sizes").Result, "skipped") << outcome.Out;
    EXPECT_NE(Find(outcome, "sizes").Reason.find("frames"), std::string::npos);
}

TEST_F(CheckTest, FilesThatAreNoPlugins) {
    ExpectError(ExitCode::kFileUnreadable, Run({"--check", "missing.tkv"}));
    ExpectError(ExitCode::kFileUnreadable, Run({"--check", Stage()}));
    ExpectError(ExitCode::kUsage, Run({"--check", "a.tkv", "--render", "a.mp4"}));
    const std::string whole = ReadFile(PluginFile("Good"));
    const std::pair<std::string, const char*> files[] = {{"Text, and a few lines of it.", "not a library at all"},
                                                         {std::string("MZ").append(100, '\0'), "for Windows"},
                                                         {"", "empty"},
                                                         {whole.substr(0, whole.size() / 2), "cut short"}};
    for (const auto& [bytes, reason] : files) {
        std::ofstream(folder_.File("a.tkv"), std::ios::binary) << bytes;
        const Outcome outcome = Check(folder_.File("a.tkv"));
        EXPECT_EQ(outcome.Code, static_cast<int>(ExitCode::kCheckFailed));
        EXPECT_NE(Find(outcome, "library").Reason.find(reason), std::string::npos) << outcome.Out;
    }
}

TEST_F(CheckTest, ReportForPeople) {
    const Outcome outcome = Run({"--check", PluginFile("RowTooMany"), "--check-effort", kLeastEffort});
    EXPECT_EQ(outcome.Code, static_cast<int>(ExitCode::kCheckFailed));
    EXPECT_NE(outcome.Out.find("\n  pass     library"), std::string::npos) << outcome.Out;
    EXPECT_NE(outcome.Out.find("\n  FAIL     sizes           wrote 4 bytes"), std::string::npos) << outcome.Out;
    EXPECT_NE(outcome.Out.find("\nRowTooMany.tkv FAILS: "), std::string::npos) << outcome.Out;
    EXPECT_EQ(outcome.Out.find('\033'), std::string::npos) << "colour in a file";
}

class SoundPluginTest : public CheckTest, public testing::WithParamInterface<std::string> {};

TEST_P(SoundPluginTest, Passes) {
    // Under a sanitizer, where a process takes its time to start, one of each kind.
    const std::vector<std::string> kinds = {"Good", "Glow", "Flow", "Meters", "Waterfall"};
    if (kIsSanitized && std::find(kinds.begin(), kinds.end(), std::filesystem::path(GetParam()).stem()) == kinds.end())
        GTEST_SKIP();
    const Outcome outcome = Check(GetParam());
    EXPECT_EQ(outcome.Code, 0) << outcome.Out << outcome.Error;
    EXPECT_EQ(CountFailed(outcome), 0);
}

// Large pictures take a check's usual effort.
TEST_P(SoundPluginTest, PaintsInsideOfPicturesOfAllSizes) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "takes minutes, and one thread alone has no races";
#endif
    const Outcome outcome = Run({"--check", GetParam(), "--json", "--check-only", "sizes"});
    EXPECT_EQ(outcome.Code, 0) << outcome.Out << outcome.Error;
    const Told told = Find(outcome, "sizes");
    EXPECT_NE(told.Reason.find(told.Result == "skipped" ? "draws to a window" : "to 3840x2160"), std::string::npos)
        << outcome.Out;
}

std::vector<std::string> SoundPlugins() {
    std::vector<std::string> files = {TEST_PLUGIN_DIR "/Good.tkv", TEST_PLUGIN_DIR "/Glow.tkv"};
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(STAGE_DIR "/Visualizations", ignored))
        if (entry.path().extension() == ".tkv") files.push_back(entry.path());
    return files;
}

INSTANTIATE_TEST_SUITE_P(All, SoundPluginTest, testing::ValuesIn(SoundPlugins()),
                         [](const auto& file) { return std::filesystem::path(file.param).stem().string(); });

}  // namespace
}  // namespace tdkplay
