// The staged player as a process, for tests from outside.
#pragma once

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <sstream>
#include <utility>

#include "player/base/ExitCode.h"
#include "tests/player/TestFiles.h"
#include "tests/support/Wait.h"

namespace tdkplay {

using tdkviz::test::WaitUntil;

struct Outcome {
    int Code = -1;  // exit code; -1 if a signal ended it
    std::string Out;
    std::string Error;
};

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Runs the player in a folder of its own and with a registry of its own, and without a display unless one is named.
class PlayerRun : public testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(Stage() + "/tdkplay") || !std::filesystem::exists(Stage() + "/tdkviz.so"))
            GTEST_SKIP() << "nothing is staged";
        const char* const former = getenv("TDKVIZ_REGISTRY");
        formerRegistry_ = former ? former : "";
        setenv("TDKVIZ_REGISTRY", registry_.c_str(), 1);  // for this process's own look at it
        song_ = folder_.File("song.wav");
        ASSERT_TRUE(WriteSines(song_, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, 5.0));
    }

    void TearDown() override {
        EndProgram();
        if (!formerRegistry_.empty()) setenv("TDKVIZ_REGISTRY", formerRegistry_.c_str(), 1);
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
        setenv("DISPLAY", display_.c_str(), 1);
        unsetenv("TDKVIZ_DISPLAY");
        setenv("TDKVIZ_REGISTRY", registry_.c_str(), 1);
        setenv("XDG_DATA_HOME", dataHome_.c_str(), 1);
        if (chdir(folder_.File("").c_str()) == 0) execv(program.c_str(), pointers.data());
        _exit(127);
    }
    // Starts the program of the test, which ends with it if not before.
    void Launch(const std::vector<std::string>& arguments, const std::string& program = Stage() + "/tdkplay") {
        program_ = Start(arguments, program);
    }
    // As a user's interrupt ends it.
    void EndProgram() {
        if (program_ > 0) kill(program_, SIGINT);
        ExpectGoodEnd();
    }
    void ExpectGoodEnd() {
        if (program_ <= 0) return;
        const Outcome outcome = Finish(std::exchange(program_, 0));
        EXPECT_EQ(outcome.Code, 0) << outcome.Error;
        EXPECT_EQ(outcome.Error, "");
    }
    // The player in another folder, with no plug-ins but what is put into its folder for them.
    std::string CopyPlayer() const {
        std::filesystem::create_directories(copiedPlugins_);
        for (const char* file : {"tdkplay", "libtdkplatform.so", "tdkviz.so"})
            std::filesystem::copy(Stage() + "/" + file, folder_.File("copy/") + file);
        return folder_.File("copy/tdkplay");
    }
    void PutPlugin(const std::string& path) const { std::filesystem::copy(path, copiedPlugins_); }
    void RemovePlugin(const std::string& file) const { std::filesystem::remove(copiedPlugins_ + file); }
    Outcome Finish(pid_t child) const {
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(folder_.File("stdout")),
                ReadFile(folder_.File("stderr"))};
    }
    Outcome Run(const std::vector<std::string>& arguments, const std::string& program = Stage() + "/tdkplay") const {
        return Finish(Start(arguments, program));
    }
    Outcome RunWell(const std::vector<std::string>& arguments) const {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.Code, 0) << outcome.Error;
        return outcome;
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
    std::string registry_ = folder_.File("registry.db");
    std::string dataHome_ = folder_.File("data");
    std::string display_;
    std::string song_;
    const std::string copiedPlugins_ = folder_.File("copy/Visualizations/");

private:
    std::string formerRegistry_;
    pid_t program_ = 0;
};

}  // namespace tdkplay
