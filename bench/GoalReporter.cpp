#include "bench/GoalReporter.h"

#include <cstdio>

namespace bench {

namespace {

constexpr char kGoalPrefix[] = "Goal/";
constexpr char kMeasurementPrefix[] = "Measured/";

}  // namespace

bool GoalReporter::ReportContext(const Context& context) {
    PrintBasicContext(&GetErrorStream(), context);
    return true;
}

void GoalReporter::ReportRuns(const std::vector<Run>& runs) {
    std::vector<Run> others;
    for (const Run& run : runs) {
        const std::string& name = run.run_name.function_name;
        if (name.rfind(kGoalPrefix, 0) == 0) {
            TakeGoal(run);
        } else if (name.rfind(kMeasurementPrefix, 0) == 0) {
            TakeMeasurement(run);
        } else {
            others.push_back(run);
            continue;
        }
        std::fprintf(stderr, "%s\n", name.c_str());
    }
    if (others.empty()) return;
    static bool hasHeader = false;
    if (!hasHeader) PrintHeader(others.front());
    hasHeader = true;
    for (const Run& run : others) PrintRunData(run);
}

void GoalReporter::TakeGoal(const Run& run) {
    const std::string& name = run.run_name.function_name;
    const size_t end = name.rfind('/');
    const std::string subject = name.substr(sizeof kGoalPrefix - 1, end - (sizeof kGoalPrefix - 1));
    if (rows_.empty() || rows_.back().name != subject) rows_.push_back({subject, "", {}, {}});
    if (run.error_occurred) return;
    Row& row = rows_.back();
    Cell& cell = name.substr(end + 1) == "wide" ? row.wide : row.any;
    row.peer = run.report_label;
    cell = {true, run.counters.at("met") != 0, run.counters.at("speed_up") != 0, run.counters.at("ratio"),
            run.counters.at("goal")};
}

void GoalReporter::TakeMeasurement(const Run& run) {
    char text[80] = "not measured";
    if (!run.error_occurred)
        std::snprintf(text, sizeof text, "%.2f %s", run.counters.at("value").value, run.report_label.c_str());
    values_.push_back({run.run_name.function_name.substr(sizeof kMeasurementPrefix - 1), text});
}

std::string GoalReporter::TextOf(const Cell& cell) {
    if (!cell.isMeasured) return "not measured";
    char text[80];
    std::snprintf(text, sizeof text, "%.2f%s (%s %.2f) %s", cell.ratio, cell.isSpeedUp ? "x" : "",
                  cell.isSpeedUp ? ">=" : "<=", cell.goal, cell.isMet ? "met" : "NOT MET");
    return text;
}

void GoalReporter::Finalize() {
    if (!rows_.empty())
        std::printf("\n| Goal | Against | Any x86-64 | Vectors of 256 bits or more |\n|---|---|---|---|\n");
    for (const Row& row : rows_) {
        std::printf("| %s | %s | %s | %s |\n", row.name.c_str(), row.peer.c_str(), TextOf(row.any).c_str(),
                    TextOf(row.wide).c_str());
    }
    if (!values_.empty()) std::printf("\n| Measured | Value |\n|---|---|\n");
    for (const Value& value : values_) std::printf("| %s | %s |\n", value.name.c_str(), value.text.c_str());
}

}  // namespace bench
