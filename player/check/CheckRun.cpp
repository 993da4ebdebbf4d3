#include "player/check/CheckRun.h"

#include <string.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "player/base/Joined.h"
#include "player/check/CheckList.h"
#include "player/check/ProbeMain.h"

namespace tdkplay::check {
namespace {

// One call into a plug-in that takes longer doesn't come back: a machine that is busy is given ten times the time
// that any call may take.
constexpr double kPatience = 10;

std::string SignalText(int signal) {
    const char* const name = sigabbrev_np(signal);
    return name ? "SIG" + std::string(name) : "signal " + std::to_string(signal);
}

std::string InCall(const ChildEnd& end) {
    return end.Call.empty() ? " outside of all calls" : " in " + end.Call;
}

// Why the process ended before the probe did.
std::string EarlyEnd(const ChildEnd& end) {
    const std::string words = end.LastWords.empty() ? "" : ": " + end.LastWords;
    switch (end.Way) {
        case ChildEnd::How::kHang:
            if (end.Call.empty()) return "hangs outside of all calls";
            return "hangs: " + end.Call + " hasn't come back after " + std::to_string(static_cast<int>(kPatience)) +
                   " seconds";
        case ChildEnd::How::kExit:
            return "ended the whole process with exit code " + std::to_string(end.Number) + InCall(end) + words;
        case ChildEnd::How::kSignal:
            break;
    }
    if (end.Number == SIGABRT) return "aborted" + InCall(end) + words;
    const std::string place = end.IsOwnThread ? " on a thread of its own" : InCall(end);
    return "crashed with " + SignalText(end.Number) + place + (end.Address.empty() ? "" : " at address " + end.Address);
}

// The gravest finding gives the verdict, and all of its kind the reason.
void Judge(const SentFindings& findings, CheckResult& result) {
    std::vector<std::string> reasons;
    for (const Finding& finding : findings.All) {
        if (finding.Kind < result.Outcome) continue;
        if (finding.Kind > result.Outcome) reasons.clear();
        result.Outcome = finding.Kind;
        reasons.push_back(finding.Text);
    }
    result.Reason = Joined(reasons, "; ");
}

}  // namespace

CheckResult CheckRun::RunOne(const std::string& name) const {
    std::array<char, 32> effort = {};
    std::snprintf(effort.data(), effort.size(), "%g", tuning_.Effort);
    ChildProcess child({"--check", file_, "--check-inside", name, "--check-effort", effort.data()});
    const ChildEnd end = child.Wait(kPatience, interrupt_);
    const SentFindings findings(end.Findings);
    CheckResult result = {name, Verdict::kPass, "", end.Seconds, true};
    if (findings.HasEnded && end.Way != ChildEnd::How::kHang) {
        Judge(findings, result);
        return result;
    }
    result.Outcome = Verdict::kFail;
    result.Reason = PlainText(EarlyEnd(end));
    return result;
}

bool CheckRun::Run(CheckReport& report) {
    std::vector<CheckResult> results;
    std::string missing;  // the vital check that failed
    bool passes = true;
    report.Begin(file_);
    for (const Check& check : AllChecks()) {
        if (!tuning_.Only.empty() && !check.IsVital && check.Name != tuning_.Only) continue;
        report.BeginCheck(check.Name);
        CheckResult result = {check.Name, Verdict::kSkipped, "needs \"" + missing + "\" to pass", 0, false};
        if (missing.empty()) result = RunOne(check.Name);
        if (result.Outcome == Verdict::kFail) {
            passes = false;
            if (check.IsVital) missing = check.Name;
        }
        report.EndCheck(result);
        results.push_back(std::move(result));
    }
    report.End(file_, results);
    return passes;
}

ExitCode CheckPlugin(const Options& options) {
    std::error_code error;
    const std::string file = std::filesystem::absolute(options.Check, error).string();
    const CheckTuning& tuning = options.Checking;
    if (!tuning.Inside.empty()) RunProbe(tuning.Inside, file, tuning.Effort);
    const int fault = access(file.c_str(), R_OK) != 0 ? errno : std::filesystem::is_directory(file, error) ? EISDIR : 0;
    if (fault != 0) throw PlayerError(ExitCode::kFileUnreadable, options.Check + ": " + std::strerror(fault));
    CheckRun run(options.Check, tuning);
    return run.Run(*MakeReport(options.Json)) ? ExitCode::kDone : ExitCode::kCheckFailed;
}

}  // namespace tdkplay::check
