// GoalReporter: ordinary benchmarks line by line, and at the end the goals as one table and the measurements as
// another.
#pragma once

#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

class GoalReporter final : public benchmark::ConsoleReporter {
public:
    GoalReporter() : ConsoleReporter(OO_None) {}

    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    // Prints the tables.
    void Finalize() override;

private:
    struct Cell {
        bool isMeasured = false, isMet = false, isSpeedUp = false;
        double ratio = 0, goal = 0;
    };
    struct Row {
        std::string name, peer;
        Cell any, wide;
    };
    struct Value {
        std::string name, text;
    };
    void TakeGoal(const Run& run);
    void TakeMeasurement(const Run& run);
    static std::string TextOf(const Cell& cell);

    std::vector<Row> rows_;
    std::vector<Value> values_;
};

}  // namespace bench
