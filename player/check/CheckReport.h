// The report of a run of all checks: for people as a table that grows, for programs as one JSON object at its end.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "player/check/Findings.h"

namespace tdkplay::check {

struct CheckResult {
    std::string Name;
    Verdict Outcome = Verdict::kPass;
    std::string Reason;  // one line; may be empty for a pass
    double Seconds = 0;
    bool WasTried = true;  // no check that it needs has failed
};

class CheckReport {
public:
    virtual ~CheckReport() = default;

    virtual void Begin(const std::string& file) = 0;
    virtual void BeginCheck(const std::string& name) = 0;
    virtual void EndCheck(const CheckResult& result) = 0;
    virtual void End(const std::string& file, const std::vector<CheckResult>& results) = 0;
};

// On standard output; coloured on a terminal.
std::unique_ptr<CheckReport> MakeReport(bool json);

}  // namespace tdkplay::check
