// What the fault sweep expects of the module: which board library calls it
// can make fail and how, and the statuses, messages and board writes each
// step of a pass must show when one call fails.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ModulePass.h"
#include "SimHarness.h"

namespace sweep {

using vtest::Generation;

// A library call as the simulator logs it: the function and, when it has
// one, its key argument (id, pin, panel, mask).
struct Call {
    std::string function;
    std::optional<uint32_t> key;
    bool operator<(const Call& other) const;
};
Call ParseCall(const std::string& logLine);

// What a library function does, as far as faults go.
enum Trait : unsigned {
    kText = 1,    // answers a text through a buffer and a length
    kNumber = 2,  // writes numbers to outputs
    kInit = 4,    // the library's initialise
    kUninit = 8,  // the library's shut-down
    kWrite = 16,  // changes the board
};
// Every function of `generation`'s library the module calls, with its traits.
std::vector<std::pair<std::string, unsigned>> LibraryFunctions(Generation generation);
// The traits of `function` on `generation`'s library; 0 for a function the
// sweep does not know (a new one must be added to its table).
unsigned Traits(Generation generation, const std::string& function);

// The ways one call is made to misbehave.
enum class Kind {
    Failure,             // a failure status of its own (0xFFFFF4FF)
    FailureZero,         // 0, the third-generation library's failure answer
    MoreData,            // "buffer too small", 0xFFFFF9FF, for text calls
    AlreadyInitialised,  // 0xFFFFFFFE, for the library's initialise
    AbsurdValue,         // 0xFFFFFFFF in every numeric output
    AbsurdLength,        // a text length of 0xFFFFFFFF
    Unterminated,        // a text filling the buffer with no terminator
};
const char* KindName(Kind kind);
std::optional<Kind> KindNamed(const std::string& name);
// The kinds that apply to a function with `traits` on `generation`.
std::vector<Kind> KindsFor(Generation generation, unsigned traits);

struct Fault {
    Call call;
    Kind kind;
    // False: the call misbehaves from the start. True: only once the module
    // has initialised, so that what it discovered and what it reads later
    // disagree (a sensor published, then failing).
    bool afterInit = false;
};
// The simulator's fault entry: every matching call misbehaves.
std::string FaultJson(const Fault& fault);
// The status the failing call answers, for the kinds that only change it:
// true with `status` set, false for the others.
bool InjectedStatus(Kind kind, uint32_t& status);

// Checks one run of the pass. `clean` holds each step's status in the pass
// without faults, by Step::key(); `fault` is the call made to misbehave
// (none for the clean pass itself). Returns one line per violation.
std::vector<std::string> CheckRun(Generation generation, const std::vector<vtest::Step>& steps,
                                  const std::map<std::string, uint32_t>& clean,
                                  const std::optional<Fault>& fault);

}  // namespace sweep
