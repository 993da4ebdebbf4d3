#include "player/check/ProcessState.h"

#include <malloc.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cfenv>
#include <clocale>
#include <cstring>
#include <filesystem>
#include <fstream>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace tdkplay::check {
namespace {

// Those from here on are for whoever comes first.
constexpr int kFirstFreeSignal = 32;

long CountEntries(const char* folder) {
    std::error_code ignored;
    return std::distance(std::filesystem::directory_iterator(folder, ignored), std::filesystem::directory_iterator());
}

long CountLines(const char* path) {
    std::ifstream file(path);
    long count = 0;
    for (std::string line; std::getline(file, line);) ++count;
    return count;
}

}  // namespace

ProcessState::ProcessState() {
    for (int signal = 1; signal < kFirstFreeSignal; ++signal)
        sigaction(signal, nullptr, &handlers_[static_cast<size_t>(signal)]);
    locale_ = std::setlocale(LC_ALL, nullptr);
    std::error_code ignored;
    folder_ = std::filesystem::current_path(ignored).string();
    for (int file = 0; file < static_cast<int>(files_.size()); ++file) fstat(file, &files_[static_cast<size_t>(file)]);
    mask_ = umask(0);
    umask(mask_);
    for (char** entry = environ; entry && *entry; ++entry) environment_.emplace_back(*entry);
    std::sort(environment_.begin(), environment_.end());
}

std::vector<std::string> ProcessState::ChangesSince(const ProcessState& before) const {
    std::vector<std::string> changes;
    for (size_t signal = 1; signal < handlers_.size(); ++signal)
        if (handlers_[signal].sa_sigaction != before.handlers_[signal].sa_sigaction)
            changes.push_back(std::string("the handler of ") + strsignal(static_cast<int>(signal)));
    if (locale_ != before.locale_) changes.push_back("the locale, to " + locale_);
    if (folder_ != before.folder_) changes.push_back("the working directory, to " + folder_);
    if (mask_ != before.mask_) changes.emplace_back("the umask");
    if (environment_ != before.environment_) changes.emplace_back("the environment");
    constexpr const char* kNames[] = {"standard input", "standard output", "standard error"};
    for (size_t file = 0; file < files_.size(); ++file)
        if (files_[file].st_ino != before.files_[file].st_ino || files_[file].st_dev != before.files_[file].st_dev)
            changes.emplace_back(kNames[file]);
    return changes;
}

ThreadState::ThreadState() : rounding_(std::fegetround()) {
#if defined(__x86_64__)
    constexpr unsigned kHasHappened = 0x3F;
    control_ = _mm_getcsr() & ~kHasHappened;
    asm volatile("fnstcw %0" : "=m"(x87_));
#endif
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked_);
}

std::vector<std::string> ThreadState::ChangesSince(const ThreadState& before) const {
    std::vector<std::string> changes;
    if (rounding_ != before.rounding_)
        changes.emplace_back("the floating point rounding");
    else if (control_ != before.control_ || x87_ != before.x87_)
        changes.emplace_back("the floating point mode");
    for (int signal = 1; signal < NSIG; ++signal) {
        if (sigismember(&blocked_, signal) == sigismember(&before.blocked_, signal)) continue;
        changes.emplace_back("the blocked signals");
        break;
    }
    return changes;
}

void ThreadState::Restore() const {
    std::fesetround(rounding_);
#if defined(__x86_64__)
    _mm_setcsr(control_);
    asm volatile("fldcw %0" : : "m"(x87_));
#endif
    pthread_sigmask(SIG_SETMASK, &blocked_, nullptr);
}

bool ResourceUse::IsExact() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return false;
#else
    return true;
#endif
}

ResourceUse ResourceUse::Now() {
    ResourceUse use;
    if (IsExact()) {
        const auto info = mallinfo2();
        use.Bytes = static_cast<long>(info.uordblks + info.hblkhd);
        use.Mappings = CountLines("/proc/self/maps");
    }
    use.Files = CountEntries("/proc/self/fd");
    use.Threads = CountEntries("/proc/self/task");
    return use;
}

std::vector<std::string> OtherThreads() {
    std::vector<std::string> names;
    std::error_code ignored;
    const std::string own = std::to_string(syscall(SYS_gettid));
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task", ignored)) {
        if (entry.path().filename() == own) continue;
        std::string name;
        std::getline(std::ifstream(entry.path() / "comm"), name);
        names.push_back(name);
    }
    return names;
}

}  // namespace tdkplay::check
