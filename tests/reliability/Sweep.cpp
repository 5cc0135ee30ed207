// The sweeps over one library generation's default simulated board. Each
// holds every run to the rules that hold for any answer of any block (below),
// and writes what the run answered where it differs from a clean pass into a
// table that must match its golden file, tests/data/golden/<sweep>-<gen>.txt,
// read like a table of (call, fault) -> (statuses, messages, document):
//
//   sweep faults GEN    a clean pass (initialise, capability, read every item
//                       with a value of its own type, write every settable
//                       item with its present value, uninitialise) records
//                       every distinct library call the module makes; then,
//                       for each and each way it can misbehave (Faults.h),
//                       the pass runs again in a process of its own with just
//                       that call misbehaving, from the start and, for calls
//                       made while initialising and later, only later.
//   sweep hostile GEN   every kind of JSON value, a null pointer among them,
//                       read from and written to ids across the id space.
//
// Internal: sweep --child GEN CLEAN [CALL KIND WHEN] (one run; CLEAN is the
// clean pass's record, written by the run without a fault) and sweep --batch
// GEN CLEAN (every status-only fault in one process, for memcheck).
//
// The rules of every run: no crash, no sanitizer report, heap flat over a
// further pass; the module prints only its own lines; a get or set prints
// the entry point's failure line exactly when it fails; a failed read leaves
// the host's value as it was; a read never writes to the board.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "Faults.h"
#include "HeapUse.h"
#include "Pass.h"
#include "RunTool.h"

using namespace vtest;

namespace {

std::string Self() {
    char path[4096];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    path[n < 0 ? 0 : n] = '\0';
    return path;
}

// The record of the clean pass: its steps, one JSON object a line.
void WriteRecord(const std::string& path, const std::vector<Step>& steps) {
    std::ofstream out(path, std::ios::trunc);
    for (const Step& s : steps) {
        JsonPtr line = Own(json_pack("{s:s, s:I, s:i, s:s, s:I, s:s, s:s, s:s}", "op", s.op.c_str(),
                                     "id", static_cast<json_int_t>(s.id), "type", static_cast<int>(s.type),
                                     "input", s.input.c_str(), "status", static_cast<json_int_t>(s.status),
                                     "output", s.output.c_str(), "printed", s.printed.c_str(),
                                     "document", s.document.c_str()));
        json_t* calls = json_array();
        for (const std::string& c : s.calls) {
            json_array_append_new(calls, json_string(c.c_str()));
        }
        json_object_set_new(line.get(), "calls", calls);
        out << Dump(line.get()) << "\n";
    }
}

std::vector<Step> ReadRecord(const std::string& path) {
    std::vector<Step> steps;
    for (const std::string& line : Lines(FileText(path))) {
        const JsonPtr json = Parse(line);
        const auto text = [&](const char* key) { return json_string_value(json_object_get(json.get(), key)); };
        const auto number = [&](const char* key) { return json_integer_value(json_object_get(json.get(), key)); };
        Step s;
        s.op = text("op");
        s.id = static_cast<uint32_t>(number("id"));
        s.type = static_cast<json_type>(number("type"));
        s.input = text("input");
        s.status = static_cast<uint32_t>(number("status"));
        s.output = text("output");
        s.printed = text("printed");
        s.document = text("document");
        size_t i;
        json_t* call;
        json_array_foreach(json_object_get(json.get(), "calls"), i, call) {
            s.calls.push_back(json_string_value(call));
        }
        steps.push_back(s);
    }
    return steps;
}

// A line of the table: the text of a step's outcome (a long value cut).
std::string Outcome(const Step& s) {
    std::string text = Hex(s.status);
    if (!s.output.empty() && s.status == 0) {
        text += " " + (s.output.size() > 80 ? s.output.substr(0, 80) + "..." : s.output);
    }
    if (!s.printed.empty()) {
        text += " " + Dump(Own(json_string(s.printed.c_str())).get());
    }
    return text;
}

// The elements of a document by item id, each as compact JSON.
std::map<json_int_t, std::string> ElementsOf(const std::string& document) {
    std::map<json_int_t, std::string> elements;
    std::function<void(const json_t*)> visit = [&](const json_t* node) {
        size_t i;
        json_t* element;
        json_array_foreach(json_object_get(node, "e"), i, element) {
            elements[json_integer_value(json_object_get(element, "id"))] += Dump(element);
        }
        const char* key;
        json_t* member;
        json_object_foreach(const_cast<json_t*>(node), key, member) {
            if (json_is_object(member)) {
                visit(member);
            }
        }
    };
    const JsonPtr json = Parse(document);
    visit(json.get());
    return elements;
}

// A line for each non-empty entry of `keys`; a run of three or more
// consecutive ones is one line, "first .. last (n)".
std::vector<std::string> Ranges(const std::vector<std::string>& keys) {
    std::vector<std::string> lines;
    for (size_t i = 0; i < keys.size();) {
        if (keys[i].empty()) {
            ++i;
            continue;
        }
        size_t j = i;
        while (j + 1 < keys.size() && !keys[j + 1].empty()) {
            ++j;
        }
        if (j - i >= 2) {
            lines.push_back(keys[i] + " .. " + keys[j] + " (" + std::to_string(j - i + 1) + ")");
        } else {
            lines.insert(lines.end(), keys.begin() + static_cast<long>(i), keys.begin() + static_cast<long>(j) + 1);
        }
        i = j + 1;
    }
    return lines;
}

// What a run answered where it differs from the clean pass: each step's
// outcome, the steps it lacks or adds, and the document's elements.
std::string Difference(const std::vector<Step>& clean, const std::vector<Step>& run) {
    std::map<std::string, const Step*> before;
    for (const Step& s : clean) {
        before[s.key()] = &s;
    }
    std::string text;
    std::vector<std::string> added;
    std::map<std::string, bool> seen;
    for (const Step& s : run) {
        const std::string key = s.key();
        seen[key] = true;
        const auto was = before.find(key);
        added.push_back(was == before.end() ? key : "");
        if (was != before.end() && Outcome(*was->second) != Outcome(s)) {
            text += "  " + key + " -> " + Outcome(s) + "\n";
        }
    }
    std::vector<std::string> missing;
    for (const Step& s : clean) {
        missing.push_back(seen.count(s.key()) != 0 ? "" : s.key());
    }
    for (const std::string& line : Ranges(missing)) {
        text += "  lacks " + line + "\n";
    }
    for (const std::string& line : Ranges(added)) {
        text += "  adds " + line + "\n";
    }
    const auto cleanDoc = ElementsOf(clean.size() > 1 ? clean[1].document : "{}");
    const auto runDoc = ElementsOf(run.size() > 1 ? run[1].document : "{}");
    std::vector<std::string> gone;
    for (const auto& [id, element] : cleanDoc) {
        const auto now = runDoc.find(id);
        gone.push_back(now == runDoc.end() ? Hex(static_cast<uint32_t>(id)) : "");
        if (now != runDoc.end() && now->second != element) {
            text += "  element " + Hex(static_cast<uint32_t>(id)) + " " + now->second + "\n";
        }
    }
    for (const std::string& line : Ranges(gone)) {
        text += "  element gone " + line + "\n";
    }
    return text;
}

// The rules every run keeps, whatever the board library answered.
std::vector<std::string> Broken(const std::vector<Step>& steps) {
    std::vector<std::string> problems;
    for (const Step& s : steps) {
        for (const std::string& line : Lines(s.printed)) {
            if (line.rfind("VORADrv", 0) != 0 && line.rfind("VORADRV", 0) != 0 &&
                line.rfind("[VORADrv]", 0) != 0) {
                problems.push_back(s.key() + " printed a line not the module's: " + line);
            }
        }
        if (s.op != "get" && s.op != "set") {
            continue;
        }
        const std::string entry = s.op == "get" ? "VORADrv get value: " : "VORADrv set value: ";
        if ((s.status != 0) != (s.printed.find(entry) != std::string::npos)) {
            problems.push_back(s.key() + " answered " + Hex(s.status) + " and printed " + s.printed);
        }
        if (s.op == "get" && s.type != JSON_NULL && s.status != 0 &&
            s.output != Dump(Own(Sentinel(s.type)).get())) {
            problems.push_back(s.key() + " failed and changed the value to " + s.output);
        }
        for (const std::string& call : s.calls) {
            const std::string function = call.substr(0, call.find(' '));
            if (s.op == "get" && (function.find("Set") != std::string::npos ||
                                  function.find("Write") != std::string::npos ||
                                  function.find("Screen") != std::string::npos)) {
                problems.push_back(s.key() + " wrote to the board: " + call);
            }
        }
    }
    return problems;
}

// One pass with `fault` misbehaving: from the start, or only once the
// module has discovered the board (withdrawn after the pass).
std::vector<Step> PassWith(SimControl& sim, StdoutCapture& out, const std::string& fault, bool later) {
    sim.clearFaults();
    if (!fault.empty() && !later) {
        sim.addFaultError(fault);
    }
    std::vector<Step> steps = RunPass(sim, out, [&] {
        if (!fault.empty() && later) {
            sim.addFaultError(fault);
        }
    });
    sim.clearFaults();
    return steps;
}

// One run: prints its difference from the clean pass (or, without a fault,
// writes the clean record); the exit status says whether a rule broke.
int Child(Generation generation, const std::string& cleanPath, const std::string& fault, bool later) {
    UseSimulator(generation);
    SimControl sim(generation);
    std::vector<Step> steps;
    size_t before = 0;
    size_t after = 0;
    {
        StdoutCapture out;
        steps = PassWith(sim, out, fault, later);
        // What a pass leaves behind shows as heap growth over a further one
        // (the first may set up what lives as long as the process).
        PassWith(sim, out, fault, later);
        before = HeapInUse();
        PassWith(sim, out, fault, later);
        after = HeapInUse();
    }
    std::vector<std::string> problems = Broken(steps);
    if (fault.empty()) {
        WriteRecord(cleanPath, steps);
    } else {
        std::fputs(Difference(ReadRecord(cleanPath), steps).c_str(), stdout);
    }
    if (after > before) {
        problems.push_back("the heap in use grew by " + std::to_string(after - before) +
                           " bytes over one pass");
    }
    for (const std::string& p : problems) {
        std::fprintf(stderr, "%s\n", p.c_str());
    }
    return problems.empty() ? 0 : 1;
}

struct Run {
    std::string call;
    Kind kind;
    bool later;
};

// Every run of the sweep: each distinct call of the clean pass, each way it
// can misbehave, from the start and (for a call made both while initialising
// and later) only later.
std::vector<Run> Runs(Generation generation, const std::vector<Step>& clean) {
    std::vector<Run> runs;
    for (const Made& made : CallsMade(clean)) {
        const LibraryFunction* function =
            FunctionNamed(generation, made.call.substr(0, made.call.find(' ')));
        for (const Kind kind : KindsFor(generation, *function)) {
            runs.push_back({made.call, kind, false});
            if (made.atInit && made.later) {
                runs.push_back({made.call, kind, true});
            }
        }
    }
    return runs;
}

std::string RunName(const Run& run) {
    return run.call + " " + KindName(run.kind) + (run.later ? " later" : "");
}

// Runs `arguments` of this program; on failure prints `what` and its report.
ToolResult Spawn(const std::vector<std::string>& arguments, const std::string& what,
                 int& failed, const std::string& program = Self()) {
    const ToolResult run = RunTool(program, arguments);
    if (run.status != 0) {
        ++failed;
        std::printf("FAILED %s (%s):\n%s", what.c_str(),
                    run.status < 0 ? "crashed" : ("exit status " + std::to_string(run.status)).c_str(),
                    run.err.substr(0, 2000).c_str());
    }
    return run;
}

// Compares `table` with its golden file; returns the number of failures.
int CompareGolden(const std::string& table, const std::string& name) {
    const std::string difference = GoldenDifference(table, name);
    if (!difference.empty()) {
        std::printf("FAILED: the answers differ from the table\n%s\n", difference.c_str());
        return 1;
    }
    return 0;
}

int FaultSweep(const std::string& name) {
    const Generation generation = *GenerationNamed(name);
    char cleanPath[] = "/tmp/voradrv-sweep-XXXXXX";
    close(mkstemp(cleanPath));
    int failed = 0;
    Spawn({"--child", name, cleanPath}, "the clean pass", failed);
    const std::vector<Run> runs = failed == 0 ? Runs(generation, ReadRecord(cleanPath)) : std::vector<Run>{};
    std::string table;
    for (const Run& run : runs) {
        const ToolResult result = Spawn({"--child", name, cleanPath, run.call, KindName(run.kind),
                                         run.later ? "later" : "always"},
                                        RunName(run), failed);
        table += RunName(run) + "\n" + result.out;
    }
    if (UnderMemcheck() && failed == 0) {
        const ToolResult batch = Spawn({"valgrind", "--quiet", "--error-exitcode=99", "--leak-check=full",
                                        "--errors-for-leak-kinds=definite,indirect",
                                        "--show-leak-kinds=definite,indirect", Self(), "--batch", name,
                                        cleanPath},
                                       "every status-only fault under memcheck", failed, "/usr/bin/env");
        std::printf("under memcheck: %s", batch.out.c_str());
    }
    unlink(cleanPath);
    failed += CompareGolden(table, "sweep-" + name + ".txt");
    std::printf("fault sweep (%s): %zu runs, %d failed\n", name.c_str(), runs.size(), failed);
    return failed == 0 && !runs.empty() ? 0 : 1;
}

// With memcheck: every call failing with a status that changes nothing
// else, so that the library leaves its outputs unwritten, which is what an
// output variable the module did not initialise would show.
int Batch(Generation generation, const std::string& cleanPath) {
    UseSimulator(generation);
    SimControl sim(generation);
    int runs = 0;
    StdoutCapture out;
    for (const Run& run : Runs(generation, ReadRecord(cleanPath))) {
        if (run.kind == Kind::Failure || run.kind == Kind::FailureZero) {
            PassWith(sim, out, FaultJson(run.call, run.kind), run.later);
            ++runs;
        }
    }
    out.finish();
    std::printf("%d passes\n", runs);
    return 0;
}

// The host's values of the hostile sweep.
const std::vector<std::pair<const char*, std::function<json_t*()>>> kHostValues = {
    {"null-pointer", [] { return nullptr; }},
    {"null", [] { return json_null(); }},
    {"true", [] { return json_true(); }},
    {"integer", [] { return json_integer(1); }},
    {"negative", [] { return json_integer(-1); }},
    {"wide", [] { return json_integer((json_int_t{1} << 40) + 1); }},
    {"real", [] { return json_real(1.5); }},
    {"string", [] { return json_string("1"); }},
    {"empty", [] { return json_string(""); }},
    {"long", [] { return json_string(std::string(100000, 'x').c_str()); }},
    {"array", [] { return json_pack("[i]", 1); }},
    {"object", [] { return json_pack("{s:i}", "v", 1); }},
};

// Ids across the space: 0 and all ones; for every class nibble the group
// and item bytes 0x00, 0x01 and 0xFF and the class alone; and for the first
// and the first settable item of each block, and every network item, the
// item with bits 20 to 23 set, without and with another module byte.
std::vector<uint32_t> HostileIds(const json_t* document) {
    std::vector<uint32_t> ids = {0, 0xFFFFFFFF};
    for (uint32_t cls = 0; cls <= 0xF; ++cls) {
        for (uint32_t group : {0x00u, 0x01u, 0xFFu}) {
            for (uint32_t item : {0x00u, 0x01u, 0xFFu}) {
                ids.push_back(0x01000000u | cls << 16 | group << 8 | item);
            }
        }
        ids.push_back(cls << 16);
    }
    std::vector<uint32_t> items;
    const char* name;
    json_t* block;
    json_object_foreach(const_cast<json_t*>(document), name, block) {
        const size_t first = items.size();
        for (const Item& item : Items(block)) {
            if (items.size() == first || (item.writable && items.size() == first + 1)) {
                items.push_back(item.id);
            }
        }
    }
    for (uint32_t id = 0x10B0001; id <= 0x10B0010; ++id) {
        items.push_back(id);
    }
    for (uint32_t id : items) {
        ids.insert(ids.end(), {id, id | 0x00F00000u, id & 0x00FFFFFFu, id | 0xFF000000u});
    }
    return ids;
}

int HostileSweep(const std::string& name) {
    const Generation generation = *GenerationNamed(name);
    UseSimulator(generation);
    SimControl sim(generation);
    sim.startLog();
    StdoutCapture out;
    Module().initialize();
    JsonPtr document = Own(json_object());
    Module().capability(document.get());
    out.take();
    std::string table;
    std::vector<std::string> problems;
    int calls = 0;
    for (uint32_t id : HostileIds(document.get())) {
        // Each call's outcome; the value kinds that share one are listed together.
        std::map<std::string, std::string> gets;
        std::map<std::string, std::string> sets;
        for (const auto& [kind, make] : kHostValues) {
            Step get;
            get.op = "get";
            get.id = id;
            JsonPtr value = Own(make());
            const std::string before = Dump(value.get());
            sim.takeLog();
            get.status = Module().get(id, value.get());
            get.printed = out.take();
            get.calls = Lines(sim.takeLog());
            get.output = Dump(value.get());
            if (get.status != 0 && get.output != before) {
                problems.push_back(Hex(id) + " " + kind + ": a failed read changed the value");
            }
            gets[Outcome(get)] += std::string(kind) + " ";
            Step set;
            set.op = "set";
            set.id = id;
            JsonPtr sent = Own(make());
            set.status = Module().set(id, sent.get());
            set.printed = out.take();
            set.calls = Lines(sim.takeLog());
            std::string writes;
            for (const std::string& call : set.calls) {
                writes += " " + call;
            }
            sets[Outcome(set) + writes] += std::string(kind) + " ";
            for (const std::string& p : Broken({get, set})) {
                problems.push_back(kind + std::string(" ") + p);
            }
            calls += 2;
        }
        for (const auto* answers : {&gets, &sets}) {
            for (const auto& [outcome, kinds] : *answers) {
                table += (answers == &gets ? "get " : "set ") + Hex(id) + " " + kinds + "-> " + outcome + "\n";
            }
        }
    }
    document.reset();
    Module().uninitialize();
    out.finish();
    for (const std::string& p : problems) {
        std::printf("FAILED %s\n", p.c_str());
    }
    const int failed = static_cast<int>(problems.size()) + CompareGolden(table, "hostile-" + name + ".txt");
    std::printf("hostile sweep (%s): %d calls, %d failed\n", name.c_str(), calls, failed);
    return failed == 0 ? 0 : 1;
}

int Usage() {
    std::fprintf(stderr,
                 "usage: sweep faults|hostile 4|3|eapi\n"
                 "       sweep --child GEN CLEAN [CALL KIND always|later]\n"
                 "       sweep --batch GEN CLEAN\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    ExactHeapFigures(argv);  // for the runs' heap comparison
    const std::vector<std::string> args(argv + 1, argv + argc);
    const std::optional<Generation> generation = GenerationNamed(args.size() > 1 ? args[1] : "");
    if (!generation) {
        return Usage();
    }
    if (args.size() == 2 && args[0] == "faults") {
        return FaultSweep(args[1]);
    }
    if (args.size() == 2 && args[0] == "hostile") {
        return HostileSweep(args[1]);
    }
    if (args.size() == 3 && args[0] == "--batch") {
        return Batch(*generation, args[2]);
    }
    if (args.size() == 3 && args[0] == "--child") {
        return Child(*generation, args[2], "", false);
    }
    if (args.size() == 6 && args[0] == "--child" && KindNamed(args[4])) {
        return Child(*generation, args[2], FaultJson(args[3], *KindNamed(args[4])), args[5] == "later");
    }
    return Usage();
}
