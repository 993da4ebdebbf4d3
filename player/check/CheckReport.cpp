#include "player/check/CheckReport.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>

#include "player/base/JsonText.h"

namespace tdkplay::check {
namespace {

constexpr char kEraseLine[] = "\r\033[K";
constexpr char kPlainColour[] = "\033[0m";

struct VerdictLook {
    const char* Word;
    const char* Colour;
};

// In the order of Verdict.
constexpr std::array<VerdictLook, 4> kLooks = {{
    {"pass", "\033[32m"},
    {"warning", "\033[33m"},
    {"FAIL", "\033[1;31m"},
    {"skipped", "\033[2m"},
}};
constexpr std::array<const char*, 4> kJsonWords = {"pass", "warning", "fail", "skipped"};

long CountOf(const std::vector<CheckResult>& results, Verdict verdict) {
    return std::count_if(results.begin(), results.end(),
                         [verdict](const CheckResult& result) { return result.Outcome == verdict; });
}

class TextReport final : public CheckReport {
public:
    TextReport() : isTerminal_(isatty(STDOUT_FILENO) != 0) {}

    void Begin(const std::string& file) override {
        std::printf("Checking %s\n\n", file.c_str());
        std::fflush(stdout);
    }
    void BeginCheck(const std::string& name) override {
        if (!isTerminal_) return;
        std::printf("  ...      %s", name.c_str());
        std::fflush(stdout);
    }
    void EndCheck(const CheckResult& result) override {
        if (!result.WasTried) {
            if (isTerminal_) std::fputs(kEraseLine, stdout);
            return;  // End tells of all of them
        }
        const VerdictLook& look = kLooks[static_cast<size_t>(result.Outcome)];
        std::array<char, 64> head = {};
        std::snprintf(head.data(), head.size(), "%-8s", look.Word);
        const std::string word = isTerminal_ ? look.Colour + std::string(head.data()) + kPlainColour : head.data();
        if (isTerminal_) std::fputs(kEraseLine, stdout);
        std::snprintf(head.data(), head.size(), result.Reason.empty() ? "%s" : "%-16s", result.Name.c_str());
        std::printf("  %s %s%s\n", word.c_str(), head.data(), result.Reason.c_str());
        std::fflush(stdout);
    }
    void End(const std::string& file, const std::vector<CheckResult>& results) override {
        const long failed = CountOf(results, Verdict::kFail), warned = CountOf(results, Verdict::kWarning);
        const long skipped = CountOf(results, Verdict::kSkipped);
        const auto untried =
            std::count_if(results.begin(), results.end(), [](const CheckResult& result) { return !result.WasTried; });
        if (untried != 0)
            std::printf("  %-8s the other %ld: each %s\n", kLooks[static_cast<size_t>(Verdict::kSkipped)].Word, untried,
                        results.back().Reason.c_str());
        const std::string name = std::filesystem::path(file).filename().string();
        std::printf("\n%s %s: %zu checks, %ld failed, %ld with a warning, %ld skipped\n", name.c_str(),
                    failed != 0 ? "FAILS" : "passes", results.size(), failed, warned, skipped);
    }

private:
    const bool isTerminal_;
};

class JsonReport final : public CheckReport {
public:
    void Begin(const std::string&) override {}
    void BeginCheck(const std::string&) override {}
    void EndCheck(const CheckResult&) override {}
    void End(const std::string& file, const std::vector<CheckResult>& results) override {
        std::printf("{\"file\":%s,\"passed\":%s,\"failed\":%ld,\"warnings\":%ld,\"skipped\":%ld,\"checks\":[",
                    JsonText(file).c_str(), CountOf(results, Verdict::kFail) == 0 ? "true" : "false",
                    CountOf(results, Verdict::kFail), CountOf(results, Verdict::kWarning),
                    CountOf(results, Verdict::kSkipped));
        const char* comma = "";
        for (const CheckResult& result : results) {
            std::printf("%s{\"name\":%s,\"result\":\"%s\",\"reason\":%s,\"seconds\":%.2f}", comma,
                        JsonText(result.Name).c_str(), kJsonWords[static_cast<size_t>(result.Outcome)],
                        JsonText(result.Reason).c_str(), result.Seconds);
            comma = ",";
        }
        std::printf("]}\n");
    }
};

}  // namespace

std::unique_ptr<CheckReport> MakeReport(bool json) {
    if (json) return std::make_unique<JsonReport>();
    return std::make_unique<TextReport>();
}

}  // namespace tdkplay::check
