// One check in a process of its own, so that nothing that a plug-in does can end the others.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "player/base/Interrupt.h"
#include "player/check/SharedCalls.h"

namespace tdkplay::check {

// The files of the process beside the usual three. Its standard output goes nowhere.
inline constexpr int kFindingsFile = 3;
inline constexpr int kCallsFile = 4;

struct ChildEnd {
    enum class How { kExit, kSignal, kHang };

    How Way = How::kExit;
    int Number = 0;            // exit code or signal
    std::string Findings;      // what came through the pipe
    std::string Call;          // the call in flight; empty: none
    bool IsOwnThread = false;  // the thread that crashed is the plug-in's own
    std::string Address;       // what a crash touched, if that is known
    std::string LastWords;     // the last line on its standard error
    double Seconds = 0;
};

class ChildProcess {
public:
    // Starts the running program again with these arguments. Throws PlayerError with kInternalError.
    explicit ChildProcess(const std::vector<std::string>& arguments);
    // Ends it if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Waits for its end, and ends it if one call into the plug-in takes longer than `patience` seconds, or everything
    // much longer. Throws PlayerError with kInterrupted.
    ChildEnd Wait(double patience, const Interrupt& interrupt);

private:
    // Files are closed with the object; -1: none.
    class File {
    public:
        explicit File(int number = -1) : number_(number) {}
        ~File();
        File(const File&) = delete;
        File& operator=(const File&) = delete;
        int Number() const { return number_; }
        void Reset(int number = -1);

    private:
        int number_;
    };

    void Start(const std::vector<std::string>& arguments, int findings);
    // Null, or the slot of a call that takes too long.
    const CallSlot* Hanging(uint64_t patience) const;
    // False if nothing comes in this time.
    bool ReadFindings(int milliseconds, std::string& text);
    bool HasEnded(bool mayWait);
    void TellEnd(ChildEnd& end) const;

    File pipe_, calls_, errors_;
    SharedCalls* shared_ = nullptr;
    pid_t child_ = 0;
    int status_ = 0;
    uint64_t started_ = 0;
};

}  // namespace tdkplay::check
