#include "OverheadReporter.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ostream>

namespace vbench {

namespace {

double Nanoseconds(const benchmark::BenchmarkReporter::Run& run) {
    return run.GetAdjustedRealTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
}

double Median(std::vector<double> samples) {
    std::sort(samples.begin(), samples.end());
    const size_t n = samples.size();
    return n % 2 == 1 ? samples[n / 2] : (samples[n / 2 - 1] + samples[n / 2]) / 2.0;
}

}  // namespace

OverheadReporter::OverheadReporter()
    : ConsoleReporter(::isatty(STDOUT_FILENO) ? OO_ColorTabular : OO_Tabular) {}

void OverheadReporter::ReportRuns(const std::vector<Run>& runs) {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        if (run.error_occurred) {
            continue;
        }
        Times& times = times_[run.run_name.function_name];
        const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
        if (run.run_type == Run::RT_Iteration) {
            times.samples.push_back(Nanoseconds(run));
        } else if (median) {
            times.median = Nanoseconds(run);
        }
        const auto allocations = run.counters.find("allocs");
        if (allocations != run.counters.end() && (median || run.run_type == Run::RT_Iteration)) {
            times.allocations = allocations->second.value;
        }
    }
}

void OverheadReporter::Finalize() {
    std::ostream& out = GetOutputStream();
    bool header = false;
    for (const auto& [name, module] : times_) {
        const std::string suffix = "/module";
        if (name.size() <= suffix.size() ||
            name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0) {
            continue;
        }
        const std::string read = name.substr(0, name.size() - suffix.size());
        const auto direct = times_.find(read + "/direct");
        if (direct == times_.end()) {
            continue;
        }
        auto ns = [](const Times& t) {
            return t.median >= 0 ? t.median : t.samples.empty() ? 0.0 : Median(t.samples);
        };
        const double library = ns(direct->second);
        const double total = ns(module);
        if (!header) {
            out << "\nModule overhead per read (real time"
                << (module.median >= 0 ? ", medians" : "") << "):\n";
            char line[160];
            std::snprintf(line, sizeof line, "%-22s %12s %12s %12s %8s %14s\n", "read",
                          "library ns", "module ns", "overhead ns", "ratio", "module allocs");
            out << line;
            header = true;
        }
        char line[160];
        std::snprintf(line, sizeof line, "%-22s %12.1f %12.1f %12.1f %8.2f %14.2f\n",
                      read.c_str(), library, total, total - library,
                      library > 0 ? total / library : 0.0,
                      module.allocations - direct->second.allocations);
        out << line;
    }
    out.flush();
    ConsoleReporter::Finalize();
}

}  // namespace vbench
