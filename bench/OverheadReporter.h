// Console output of the benchmarks, followed by a table of the module's
// overhead: for every benchmark pair "<name>/direct" (the board-library call
// made directly) and "<name>/module" (the same read through the module), the
// two times, their difference and their ratio. With --benchmark_repetitions
// the table uses the medians.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace vbench {

class OverheadReporter : public benchmark::ConsoleReporter {
public:
    // In colour only on a terminal, like the library's own console output.
    OverheadReporter();
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Times {
        std::vector<double> samples;  // ns per iteration, one per repetition
        double median = -1.0;         // the median aggregate, when reported
        double allocations = -1.0;    // the "allocs" counter, when reported
    };
    std::map<std::string, Times> times_;
};

}  // namespace vbench
