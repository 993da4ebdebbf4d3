#include "tests/x11/XServer.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <vector>

namespace {

constexpr const char* kProgram = "Xvfb";

std::vector<std::string> CommandLine(int depth, const std::string& options, int numberPipe) {
    std::ostringstream screen;
    screen << XServer::kWidth << 'x' << XServer::kHeight << 'x' << depth;
    std::vector<std::string> words = {kProgram,    "-displayfd", std::to_string(numberPipe),
                                      "-screen",   "0",          screen.str(),
                                      "-nolisten", "tcp",        "-noreset"};
    std::istringstream more(options);
    for (std::string word; more >> word;) words.push_back(word);
    return words;
}

std::string ReadLine(int pipe) {
    std::string line;
    for (char each = 0; read(pipe, &each, 1) == 1 && each != '\n';) line += each;
    return line;
}

}  // namespace

bool XServer::IsInstalled() {
    std::istringstream folders(std::getenv("PATH") != nullptr ? std::getenv("PATH") : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (access((folder + "/" + kProgram).c_str(), X_OK) == 0) return true;
    }
    return false;
}

XServer::XServer(int depth, const std::string& options) {
    int ends[2];
    if (pipe(ends) != 0) return;
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    const std::vector<std::string> words = CommandLine(depth, options, ends[1]);
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int nowhere = open("/dev/null", O_RDWR);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        if (getppid() == parent) execvp(kProgram, arguments.data());
        _exit(1);
    }
    close(ends[1]);
    const std::string number = ReadLine(ends[0]);
    close(ends[0]);
    if (!number.empty()) name_ = ":" + number;
}

XServer::~XServer() {
    Kill();
}

void XServer::Use() const {
    setenv("DISPLAY", name_.c_str(), 1);
    unsetenv("TDKVIZ_DISPLAY");
}

void XServer::Kill() {
    if (process_ <= 0) return;
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
    process_ = -1;
}
