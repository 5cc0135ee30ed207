// The fault sweep: for one library generation, a clean pass over the default
// simulated board records every distinct library call (function and key
// argument) the module makes; then, for each of them and each way it can
// misbehave, the pass runs again in a process of its own with just that call
// misbehaving, and is held to the module's rules (SweepOracle). The module's
// state is process-wide, so every run re-executes this program:
//
//   fault_sweep 4|3|eapi                       the sweep, with its summary
//   fault_sweep --child GEN CLEAN [FUNCTION KEY KIND WHEN]
//                                              one run; CLEAN is the clean
//                                              pass's record (written by the
//                                              run without a fault), WHEN
//                                              "always" or "after-init"
//   fault_sweep --batch GEN CLEAN              every status-only fault in one
//                                              process, for memcheck
//
// It runs under the path redirection (ctest preloads it). A run passes when
// it exits 0: no crash, no sanitizer report, no leak (the heap in use must not
// grow over a further pass), and no broken rule.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

#include "HeapUse.h"
#include "ModulePass.h"
#include "RunTool.h"
#include "SimHarness.h"
#include "SweepOracle.h"

using sweep::Call;
using sweep::Fault;
using sweep::Kind;
using vtest::Generation;

namespace {

// At most this many lines of a failed run's report are shown.
constexpr int kReportLines = 12;

std::string KeyText(const std::optional<uint32_t>& key) { return key ? vtest::Hex(*key) : "-"; }

// A distinct call of the clean pass, and whether the module made it while
// initialising, afterwards, or both.
struct Made {
    Call call;
    bool atInit = false;
    bool later = false;
};

// The clean pass's record: each step's status by key, and the distinct calls
// in the order the module first made them. Written as lines of tab-separated
// fields: "step STATUS KEY" and "call FUNCTION KEY AT-INIT LATER".
struct Record {
    std::map<std::string, uint32_t> statuses;
    std::vector<Made> calls;
};

void WriteRecord(const std::string& path, const std::vector<vtest::Step>& steps) {
    std::vector<Made> calls;
    std::map<Call, size_t> index;
    std::ofstream out(path, std::ios::trunc);
    for (const vtest::Step& step : steps) {
        out << "step\t" << step.status << "\t" << step.key() << "\n";
        for (const std::string& line : step.calls) {
            const Call call = sweep::ParseCall(line);
            const auto [at, added] = index.emplace(call, calls.size());
            if (added) {
                calls.push_back({call});
            }
            (step.op == "init" ? calls[at->second].atInit : calls[at->second].later) = true;
        }
    }
    for (const Made& made : calls) {
        out << "call\t" << made.call.function << "\t" << KeyText(made.call.key) << "\t"
            << made.atInit << "\t" << made.later << "\n";
    }
}

Record ReadRecord(const std::string& path) {
    Record record;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        std::istringstream fields(line);
        std::string what, first, second;
        std::getline(fields, what, '\t');
        std::getline(fields, first, '\t');
        std::getline(fields, second, what == "step" ? '\n' : '\t');
        if (what == "step") {
            record.statuses[second] = static_cast<uint32_t>(std::stoul(first));
        } else if (what == "call") {
            Made made{{first, std::nullopt}};
            if (second != "-") {
                made.call.key = static_cast<uint32_t>(std::stoul(second, nullptr, 16));
            }
            fields >> made.atInit >> made.later;
            record.calls.push_back(made);
        }
    }
    return record;
}

// One pass with `fault` misbehaving (none: a clean pass). A fault that comes
// after initialise is added once the capability is built and withdrawn after
// the pass, so every pass initialises without it.
std::vector<vtest::Step> PassWith(vtest::SimControl& sim, vtest::StdoutCapture& out,
                                  const std::optional<Fault>& fault) {
    sim.clearFaults();
    const bool later = fault && fault->afterInit;
    if (fault && !later) {
        sim.addFault(sweep::FaultJson(*fault));
    }
    std::vector<vtest::Step> steps = vtest::RunPass(sim, out, [&] {
        if (later) {
            sim.addFault(sweep::FaultJson(*fault));
        }
    });
    sim.clearFaults();
    return steps;
}

// One run of the pass; returns its exit status.
int Child(Generation generation, const std::string& cleanPath, const std::optional<Fault>& fault) {
    vtest::UseSimulator(generation);
    vtest::SimControl sim(generation);
    std::vector<vtest::Step> steps;
    size_t before = 0;
    size_t after = 0;
    {
        vtest::StdoutCapture out;
        steps = PassWith(sim, out, fault);
        // Whatever a pass leaves behind shows as heap growth over a further
        // one (the first may set up what lives as long as the process).
        PassWith(sim, out, fault);
        before = vtest::HeapInUse();
        PassWith(sim, out, fault);
        after = vtest::HeapInUse();
    }

    std::vector<std::string> problems;
    std::map<std::string, uint32_t> clean;
    if (fault) {
        clean = ReadRecord(cleanPath).statuses;
    } else {
        WriteRecord(cleanPath, steps);
        // Every read answers; a write may be refused by the board (a level
        // written to a pin that is an input, say), and the shut-down answers
        // in the library's own sense (1 on the third generation).
        for (const vtest::Step& step : steps) {
            if (step.status != 0 && step.op != "set" && step.op != "uninit") {
                problems.push_back("the clean pass failed at " + step.key());
            }
        }
    }
    for (const std::string& p : sweep::CheckRun(generation, steps, clean, fault)) {
        problems.push_back(p);
    }
    if (after > before) {
        problems.push_back("heap in use grew by " + std::to_string(after - before) +
                           " bytes over one pass");
    }
    for (const std::string& p : problems) {
        std::fprintf(stderr, "%s\n", p.c_str());
    }
    return problems.empty() ? 0 : 1;
}

// A call made both while initialising and afterwards also misbehaves only
// afterwards.
std::vector<const char*> Timings(const Made& made) {
    std::vector<const char*> timings{"always"};
    if (made.atInit && made.later) {
        timings.push_back("after-init");
    }
    return timings;
}

// With VTEST_MEMCHECK=1 the sweep ends with a run under Valgrind's memcheck,
// in one process: every call failing with a status that changes nothing
// else, so that the library leaves its outputs unwritten, which is what an
// output variable the module did not initialise would show. Only memory
// errors count here (the sweep holds the rest): a use of an uninitialised
// value among them, or any byte definitely or indirectly lost.
int Batch(Generation generation, const std::string& cleanPath) {
    vtest::UseSimulator(generation);
    vtest::SimControl sim(generation);
    std::vector<Kind> statusOnly{Kind::Failure};
    if (generation == Generation::Vora3) {
        statusOnly.push_back(Kind::FailureZero);
    }
    int runs = 0;
    {
        vtest::StdoutCapture out;
        for (const Made& made : ReadRecord(cleanPath).calls) {
            for (const Kind kind : statusOnly) {
                for (const char* when : Timings(made)) {
                    const bool later = std::strcmp(when, "after-init") == 0;
                    PassWith(sim, out, Fault{made.call, kind, later});
                    ++runs;
                }
            }
        }
    }
    std::printf("%d runs\n", runs);
    return 0;
}

std::string Self() {
    char path[4096];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    path[n < 0 ? 0 : n] = '\0';
    return path;
}

// Runs `program` (by default this one) with `arguments`; when it fails,
// prints `what` and the start of its report.
vtest::ToolResult Run(const std::vector<std::string>& arguments, const std::string& what,
                      const std::string& program = Self()) {
    const vtest::ToolResult run = vtest::RunTool(program, arguments);
    if (run.status != 0) {
        std::printf("FAILED %s (%s):\n", what.c_str(),
                    run.status < 0 ? "crashed"
                                   : ("exit status " + std::to_string(run.status)).c_str());
        std::istringstream report(run.err + run.out);
        std::string line;
        for (int i = 0; i < kReportLines && std::getline(report, line); ++i) {
            std::printf("    %s\n", line.c_str());
        }
    }
    return run;
}

int Sweep(const std::string& name) {
    char cleanPath[] = "/tmp/voradrv-sweep-XXXXXX";
    const int fd = mkstemp(cleanPath);
    if (fd < 0) {
        std::perror("fault_sweep: temporary file");
        return 1;
    }
    close(fd);
    if (Run({"--child", name, cleanPath}, "the clean pass").status != 0) {
        unlink(cleanPath);
        return 1;
    }
    const Generation generation = *vtest::GenerationNamed(name);
    const Record record = ReadRecord(cleanPath);
    std::map<std::string, int> runsByKind;
    int runs = 0;
    int failed = 0;
    for (const Made& made : record.calls) {
        const std::string callText = made.call.function + " " + KeyText(made.call.key);
        const unsigned traits = sweep::Traits(generation, made.call.function);
        if (traits == 0) {
            std::printf("FAILED %s: a library function the sweep does not know\n",
                        callText.c_str());
            ++failed;
        }
        const std::vector<Kind> kinds =
            traits == 0 ? std::vector<Kind>{} : sweep::KindsFor(generation, traits);
        for (const Kind kind : kinds) {
            for (const char* when : Timings(made)) {
                ++runs;
                ++runsByKind[sweep::KindName(kind)];
                const std::string what = callText + ", " + sweep::KindName(kind) + ", " + when;
                failed += Run({"--child", name, cleanPath, made.call.function,
                               KeyText(made.call.key), sweep::KindName(kind), when},
                              what)
                              .status != 0;
            }
        }
    }
    std::string kinds;
    for (const auto& [kind, count] : runsByKind) {
        kinds += (kinds.empty() ? "" : ", ") + std::to_string(count) + " " + kind;
    }
    std::printf("fault sweep (%s): %zu distinct calls, %d runs (%s), %d failed\n", name.c_str(),
                record.calls.size(), runs, kinds.c_str(), failed);
    if (vtest::UnderMemcheck()) {
        const vtest::ToolResult batch = Run(
            {"valgrind", "--quiet", "--error-exitcode=99", "--leak-check=full",
             "--errors-for-leak-kinds=definite,indirect", "--show-leak-kinds=definite,indirect",
             Self(), "--batch", name, cleanPath},
            "under memcheck", "/usr/bin/env");
        std::printf("fault sweep (%s) under memcheck, every status-only fault: %s", name.c_str(),
                    batch.out.c_str());
        failed += batch.status != 0;
    }
    unlink(cleanPath);
    return failed == 0 && runs > 0 ? 0 : 1;
}

int Usage() {
    std::fprintf(stderr,
                 "usage: fault_sweep 4|3|eapi\n"
                 "       fault_sweep --child GEN CLEAN [FUNCTION KEY KIND WHEN]\n"
                 "       fault_sweep --batch GEN CLEAN\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    vtest::ExactHeapFigures(argv);  // for the runs' heap comparison
    const std::vector<std::string> args(argv + 1, argv + argc);
    if (args.size() == 1 && vtest::GenerationNamed(args[0])) {
        return Sweep(args[0]);
    }
    const std::optional<Generation> generation =
        vtest::GenerationNamed(args.size() > 1 ? args[1] : "");
    if (args.size() == 3 && args[0] == "--batch" && generation) {
        return Batch(*generation, args[2]);
    }
    if ((args.size() == 3 || args.size() == 7) && args[0] == "--child" && generation) {
        std::optional<Fault> fault;
        if (args.size() == 7) {
            const std::optional<Kind> kind = sweep::KindNamed(args[5]);
            if (!kind || (args[6] != "always" && args[6] != "after-init")) {
                return Usage();
            }
            Call call{args[3], std::nullopt};
            if (args[4] != "-") {
                call.key = static_cast<uint32_t>(std::stoul(args[4], nullptr, 16));
            }
            fault = Fault{call, *kind, args[6] == "after-init"};
        }
        return Child(*generation, args[2], fault);
    }
    return Usage();
}
