#include "player/check/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <utility>

#include "player/base/ExitCode.h"
#include "player/base/Spawn.h"

namespace tdkplay::check {
namespace {

constexpr char kProgram[] = "/proc/self/exe";
constexpr int kFirstFreeFile = 10;  // above all numbers that the process gets
constexpr int kLookPause = 50;      // milliseconds
constexpr int kEndPause = 2;
constexpr size_t kMostLastWords = 200;
constexpr off_t kMostErrors = 4096;    // of the error output, from its end
constexpr double kLongestCheck = 600;  // seconds; beyond it something hangs, even if no call does
constexpr double kNanoseconds = 1e9;

[[noreturn]] void FailToStart() {
    throw PlayerError(ExitCode::kInternalError, std::string("no process to check in: ") + std::strerror(errno));
}

int OutOfTheWay(int file) {
    if (file < 0) FailToStart();
    const int moved = fcntl(file, F_DUPFD_CLOEXEC, kFirstFreeFile);
    close(file);
    if (moved < 0) FailToStart();
    return moved;
}

std::string LastLine(int file) {
    const off_t end = lseek(file, 0, SEEK_END);
    const off_t begin = std::max<off_t>(end - kMostErrors, 0);
    std::string text(static_cast<size_t>(end - begin), '\0');
    const ssize_t got = pread(file, text.data(), text.size(), begin);
    text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    while (!text.empty() && text.back() == '\n') text.pop_back();
    text.erase(0, text.rfind('\n') + 1);
    return text.substr(0, kMostLastWords);
}

}  // namespace

ChildProcess::File::~File() {
    Reset();
}

void ChildProcess::File::Reset(int number) {
    if (number_ >= 0) close(number_);
    number_ = number;
}

ChildProcess::ChildProcess(const std::vector<std::string>& arguments) : started_(MonotonicNow()) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) FailToStart();
    pipe_.Reset(OutOfTheWay(ends[0]));
    const File findings(OutOfTheWay(ends[1]));
    calls_.Reset(OutOfTheWay(memfd_create("calls", MFD_CLOEXEC)));
    errors_.Reset(OutOfTheWay(memfd_create("errors", MFD_CLOEXEC)));
    if (ftruncate(calls_.Number(), sizeof(SharedCalls)) != 0) FailToStart();
    void* const shared = mmap(nullptr, sizeof(SharedCalls), PROT_READ | PROT_WRITE, MAP_SHARED, calls_.Number(), 0);
    if (shared == MAP_FAILED) FailToStart();
    shared_ = static_cast<SharedCalls*>(shared);
    Start(arguments, findings.Number());
}

ChildProcess::~ChildProcess() {
    if (child_ != 0) {
        kill(child_, SIGKILL);
        HasEnded(true);
    }
    if (shared_) munmap(shared_, sizeof(SharedCalls));
}

void ChildProcess::Start(const std::vector<std::string>& arguments, int findings) {
    std::vector<std::string> all = arguments;
    all.insert(all.begin(), "tdkplay");
    Spawn process;
    process.Open(STDIN_FILENO, "/dev/null", O_RDONLY);
    process.Open(STDOUT_FILENO, "/dev/null", O_WRONLY);
    process.Give(errors_.Number(), STDERR_FILENO);
    process.Give(findings, kFindingsFile);
    process.Give(calls_.Number(), kCallsFile);
    child_ = process.Run(kProgram, std::move(all));
    if (child_ != 0) return;
    munmap(shared_, sizeof(SharedCalls));
    FailToStart();
}

const CallSlot* ChildProcess::Hanging(uint64_t patience) const {
    const uint64_t now = MonotonicNow();
    for (const CallSlot& slot : shared_->Slots) {
        const uint64_t since = slot.Since.load(std::memory_order_acquire);
        if (since != 0 && now > since + patience) return &slot;
    }
    return nullptr;
}

bool ChildProcess::ReadFindings(int milliseconds, std::string& text) {
    pollfd look = {pipe_.Number(), POLLIN, 0};
    if (poll(&look, 1, milliseconds) <= 0) return false;
    std::array<char, 4096> part;
    const ssize_t got = read(pipe_.Number(), part.data(), part.size());
    if (got > 0) text.append(part.data(), static_cast<size_t>(got));
    if (got == 0) pipe_.Reset();
    return got > 0;
}

bool ChildProcess::HasEnded(bool mayWait) {
    pid_t ended = 0;
    do ended = waitpid(child_, &status_, mayWait ? 0 : WNOHANG);
    while (ended < 0 && errno == EINTR);
    if (ended != child_) return false;
    child_ = 0;
    return true;
}

void ChildProcess::TellEnd(ChildEnd& end) const {
    end.Way = WIFSIGNALED(status_) ? ChildEnd::How::kSignal : ChildEnd::How::kExit;
    end.Number = WIFSIGNALED(status_) ? WTERMSIG(status_) : WEXITSTATUS(status_);
    for (const CallSlot& slot : shared_->Slots)
        if (slot.Since != 0) end.Call = slot.Name.data();
    const CrashRecord& crash = shared_->Crash;
    if (crash.Signal == 0) return;
    end.Call = crash.During[0] ? crash.During.data() : end.Call;
    end.IsOwnThread = crash.IsOwnThread;
    if (!crash.HasAddress) return;
    std::array<char, 32> address = {};
    std::snprintf(address.data(), address.size(), "0x%llx", static_cast<unsigned long long>(crash.Address));
    end.Address = address.data();
}

ChildEnd ChildProcess::Wait(double patience, const Interrupt& interrupt) {
    ChildEnd end;
    const auto limit = static_cast<uint64_t>(patience * kNanoseconds);
    const CallSlot* hanging = nullptr;
    const uint64_t latest = started_ + static_cast<uint64_t>(kLongestCheck * kNanoseconds);
    bool isLate = false;
    // The end of the pipe comes a little before the process's own, and never if the plug-in has started a process.
    while (!HasEnded(false)) {
        ReadFindings(pipe_.Number() >= 0 ? kLookPause : kEndPause, end.Findings);
        hanging = Hanging(limit);
        isLate = MonotonicNow() > latest;
        if (interrupt.IsRequested()) throw PlayerError(ExitCode::kInterrupted, "interrupted");
        if (!hanging && !isLate) continue;
        kill(child_, SIGKILL);
        HasEnded(true);
        break;
    }
    while (ReadFindings(0, end.Findings)) {
    }
    TellEnd(end);
    if (hanging || isLate) {
        end.Way = ChildEnd::How::kHang;
        end.Call = hanging ? hanging->Name.data() : "";
    }
    end.LastWords = LastLine(errors_.Number());
    end.Seconds = static_cast<double>(MonotonicNow() - started_) / kNanoseconds;
    return end;
}

}  // namespace tdkplay::check
