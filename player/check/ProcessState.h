// What belongs to the whole process and isn't a plug-in's to change.
#pragma once

#include <array>
#include <csignal>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace tdkplay::check {

class ProcessState {
public:
    // As it is now.
    ProcessState();

    // What has become different since `before`, in words; empty: nothing.
    std::vector<std::string> ChangesSince(const ProcessState& before) const;

private:
    std::array<struct sigaction, NSIG> handlers_ = {};
    std::string locale_, folder_;
    std::array<struct stat, 3> files_ = {};
    unsigned mask_ = 0;
    std::vector<std::string> environment_;
};

// The calling thread's floating point mode and blocked signals.
class ThreadState {
public:
    ThreadState();
    std::vector<std::string> ChangesSince(const ThreadState& before) const;
    // Puts this mode in force again.
    void Restore() const;

private:
    int rounding_ = 0;
    unsigned control_ = 0;  // of the vector unit, without the flags of what has happened
    unsigned short x87_ = 0;
    sigset_t blocked_ = {};
};

// What a process can run out of.
struct ResourceUse {
    static ResourceUse Now();
    // A player that is built with a sanitizer has another heap, with mappings of its own. They aren't counted.
    static bool IsExact();

    long Bytes = 0;  // of the heap
    long Files = 0;
    long Threads = 0;
    long Mappings = 0;
};

// The names of all threads but the calling one.
std::vector<std::string> OtherThreads();

}  // namespace tdkplay::check
