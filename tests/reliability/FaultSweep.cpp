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
#include <set>
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

std::optional<Generation> GenerationNamed(const std::string& name) {
    if (name == "4") return Generation::Vora4;
    if (name == "3") return Generation::Vora3;
    if (name == "eapi") return Generation::EApi;
    return std::nullopt;
}

std::string KeyText(const std::optional<uint32_t>& key) {
    char text[16] = "-";
    if (key) {
        std::snprintf(text, sizeof text, "0x%X", *key);
    }
    return text;
}

std::string CallText(const Call& call) {
    return call.function + (call.key ? " " + KeyText(call.key) : "");
}

// A distinct call of the clean pass, and whether the module made it while
// initialising, afterwards, or both.
struct Made {
    Call call;
    bool atInit = false;
    bool later = false;
};

// The clean pass's record: each step's status by key, and the distinct calls
// in the order the module first made them.
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
            auto [at, added] = index.emplace(call, calls.size());
            if (added) {
                calls.push_back({call});
            }
            (step.op == "init" ? calls[at->second].atInit : calls[at->second].later) = true;
        }
    }
    for (const Made& made : calls) {
        out << "call\t" << made.call.function << "\t" << KeyText(made.call.key) << "\t"
            << made.atInit << made.later << "\n";
    }
}

Record ReadRecord(const std::string& path) {
    Record record;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string what;
        std::getline(fields, what, '\t');
        if (what == "step") {
            std::string status;
            std::string key;
            std::getline(fields, status, '\t');
            std::getline(fields, key);
            record.statuses[key] = static_cast<uint32_t>(std::stoul(status));
        } else if (what == "call") {
            Made made;
            std::string key;
            std::string when;
            std::getline(fields, made.call.function, '\t');
            std::getline(fields, key, '\t');
            std::getline(fields, when);
            if (key != "-") {
                made.call.key = static_cast<uint32_t>(std::stoul(key, nullptr, 16));
            }
            made.atInit = when.size() == 2 && when[0] == '1';
            made.later = when.size() == 2 && when[1] == '1';
            record.calls.push_back(made);
        }
    }
    return record;
}

// One run of the pass; returns its exit status.
int Child(Generation generation, const std::string& cleanPath, const std::optional<Fault>& fault) {
    vtest::UseSimulator(generation);
    vtest::SimControl sim(generation);
    const bool later = fault && fault->afterInit;
    if (fault && !later) {
        sim.addFault(sweep::FaultJson(*fault));
    }
    std::vector<vtest::Step> steps;
    size_t before = 0;
    size_t after = 0;
    {
        vtest::OutputTap tap;
        // A fault that comes after initialise is added once the capability is
        // built and withdrawn after the pass, so every pass initialises
        // without it.
        vtest::ModulePass pass(sim, tap, [&] {
            if (later) {
                sim.addFault(sweep::FaultJson(*fault));
            }
        });
        auto run = [&] {
            std::vector<vtest::Step> result = pass.run();
            if (later) {
                sim.clearFaults();
            }
            return result;
        };
        steps = run();
        // Whatever a pass leaves behind shows as heap growth over a further
        // one (the first may set up what lives as long as the process).
        run();
        before = vtest::HeapInUse();
        run();
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

std::string Self() {
    char path[4096];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    path[n < 0 ? 0 : n] = '\0';
    return path;
}

// With VTEST_MEMCHECK=1 the sweep ends with a run under Valgrind's memcheck,
// in one process (Batch): every call failing with a status that changes
// nothing else, so that the library leaves its outputs unwritten, which is
// what an output variable the module did not initialise would show. Any
// memory error, a use of an uninitialised value among them, or any byte
// definitely or indirectly lost fails it.
bool Memcheck() {
    const char* memcheck = std::getenv("VTEST_MEMCHECK");
    return memcheck != nullptr && std::strcmp(memcheck, "1") == 0;
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

// The kinds that only change a call's status.
std::vector<Kind> StatusOnly(Generation generation) {
    std::vector<Kind> kinds{Kind::Failure};
    if (generation == Generation::Vora3) {
        kinds.push_back(Kind::FailureZero);
    }
    return kinds;
}

// Every status-only fault of the clean pass's record, one pass each, in this
// one process; only memory errors count here (the sweep holds the rest).
int Batch(Generation generation, const std::string& cleanPath) {
    vtest::UseSimulator(generation);
    vtest::SimControl sim(generation);
    const Record record = ReadRecord(cleanPath);
    std::optional<Fault> fault;
    int runs = 0;
    {
        vtest::OutputTap tap;
        vtest::ModulePass pass(sim, tap, [&] {
            if (fault && fault->afterInit) {
                sim.addFault(sweep::FaultJson(*fault));
            }
        });
        for (const Made& made : record.calls) {
            for (const Kind kind : StatusOnly(generation)) {
                for (const char* when : Timings(made)) {
                    sim.clearFaults();
                    fault = Fault{made.call, kind, std::strcmp(when, "after-init") == 0};
                    if (!fault->afterInit) {
                        sim.addFault(sweep::FaultJson(*fault));
                    }
                    pass.run();
                    ++runs;
                }
            }
        }
        sim.clearFaults();
    }
    std::printf("%d runs\n", runs);
    return 0;
}

void ShowReport(const vtest::ToolResult& run) {
    std::istringstream report(run.err + run.out);
    std::string line;
    for (int n = 0; n < kReportLines && std::getline(report, line); ++n) {
        std::printf("    %s\n", line.c_str());
    }
}

// The memcheck run of the sweep; false when it failed.
bool UnderMemcheck(const std::string& self, const std::string& name,
                   const std::string& cleanPath) {
    const vtest::ToolResult batch = vtest::RunTool(
        "/usr/bin/env", {"valgrind", "--quiet", "--error-exitcode=99", "--leak-check=full",
                         "--errors-for-leak-kinds=definite,indirect",
                         "--show-leak-kinds=definite,indirect", self, "--batch", name, cleanPath});
    std::printf("fault sweep (%s) under memcheck, every status-only fault: %s", name.c_str(),
                batch.out.c_str());
    if (batch.status != 0) {
        std::printf("FAILED under memcheck:\n");
        ShowReport(batch);
        return false;
    }
    return true;
}

int Sweep(const std::string& name) {
    const std::string self = Self();
    char cleanPath[] = "/tmp/voradrv-sweep-XXXXXX";
    const int fd = mkstemp(cleanPath);
    if (fd < 0) {
        std::perror("fault_sweep: temporary file");
        return 1;
    }
    close(fd);
    const vtest::ToolResult clean = vtest::RunTool(self, {"--child", name, cleanPath});
    if (clean.status != 0) {
        std::printf("fault sweep (%s): the clean pass failed\n", name.c_str());
        ShowReport(clean);
        unlink(cleanPath);
        return 1;
    }
    const Generation generation = *GenerationNamed(name);
    const Record record = ReadRecord(cleanPath);

    std::map<std::string, int> runsByKind;
    int runs = 0;
    int failed = 0;
    for (const Made& made : record.calls) {
        const Call& call = made.call;
        const unsigned traits = sweep::Traits(generation, call.function);
        if (traits == 0) {
            std::printf("FAILED %s: a library function the sweep does not know\n",
                        call.function.c_str());
            ++failed;
            continue;
        }
        for (const Kind kind : sweep::KindsFor(generation, traits)) {
            for (const char* when : Timings(made)) {
                const vtest::ToolResult run =
                    vtest::RunTool(self, {"--child", name, cleanPath, call.function,
                                          KeyText(call.key), sweep::KindName(kind), when});
                ++runs;
                ++runsByKind[sweep::KindName(kind)];
                if (run.status != 0) {
                    ++failed;
                    const std::string how =
                        run.status < 0 ? "crashed" : "exit status " + std::to_string(run.status);
                    std::printf("FAILED %s, %s, %s (%s):\n", CallText(call).c_str(),
                                sweep::KindName(kind), when, how.c_str());
                    ShowReport(run);
                }
            }
        }
    }
    std::string kinds;
    for (const auto& [kind, count] : runsByKind) {
        kinds += (kinds.empty() ? "" : ", ") + std::to_string(count) + " " + kind;
    }
    std::printf("fault sweep (%s): %zu distinct calls, %d runs (%s), %d failed\n", name.c_str(),
                record.calls.size(), runs, kinds.c_str(), failed);
    if (Memcheck() && !UnderMemcheck(self, name, cleanPath)) {
        ++failed;
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
    if (argc == 2 && GenerationNamed(argv[1])) {
        return Sweep(argv[1]);
    }
    if (argc == 4 && std::strcmp(argv[1], "--batch") == 0 && GenerationNamed(argv[2])) {
        return Batch(*GenerationNamed(argv[2]), argv[3]);
    }
    if ((argc == 4 || argc == 8) && std::strcmp(argv[1], "--child") == 0 &&
        GenerationNamed(argv[2])) {
        std::optional<Fault> fault;
        if (argc == 8) {
            const std::optional<Kind> kind = sweep::KindNamed(argv[6]);
            const std::string when = argv[7];
            if (!kind || (when != "always" && when != "after-init")) {
                return Usage();
            }
            Call call;
            call.function = argv[4];
            if (std::strcmp(argv[5], "-") != 0) {
                call.key = static_cast<uint32_t>(std::strtoul(argv[5], nullptr, 16));
            }
            fault = Fault{call, *kind, when == "after-init"};
        }
        return Child(*GenerationNamed(argv[2]), argv[3], fault);
    }
    return Usage();
}
