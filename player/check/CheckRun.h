// tdkplay --check: tries a plug-in as an author would like to have it tried, one process for each check.
#pragma once

#include <string>
#include <vector>

#include "player/base/ExitCode.h"
#include "player/base/Interrupt.h"
#include "player/check/CheckReport.h"
#include "player/check/ChildProcess.h"
#include "player/session/Options.h"
#include "player/settings/PrivateRegistry.h"

namespace tdkplay::check {

class CheckRun {
public:
    // `file` must be there.
    CheckRun(std::string file, CheckTuning tuning) : file_(std::move(file)), tuning_(std::move(tuning)) {}

    // True if no check fails. Throws PlayerError if there can be no processes, or with kInterrupted.
    bool Run(CheckReport& report);

private:
    CheckResult RunOne(const std::string& name) const;

    const std::string file_;
    const CheckTuning tuning_;
    Interrupt interrupt_;
    const PrivateRegistry registry_;  // for a plug-in that keeps something there
};

// Does what the options ask for and gives the program's exit code: the whole check, or the inside of one of its
// processes, which doesn't come back. Throws PlayerError with kFileUnreadable if the plug-in isn't there.
ExitCode CheckPlugin(const Options& options);

}  // namespace tdkplay::check
