// One pass through the module as a host drives it: initialise, capability,
// read every published item with a value of its own type, write every
// settable item with its present value, uninitialise. Each step is recorded
// with its status, what the module printed and the board library calls it
// made (the simulator's call log).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "SimHarness.h"

namespace vtest {

struct Step {
    std::string op;      // "init", "caps", "get", "set" or "uninit"
    uint32_t id = 0;     // get and set
    std::string type;    // get and set: "integer", "real" or "string"
    std::string input;   // set: the value written (compact JSON)
    std::string output;  // get: the value after the call (compact JSON)
    uint32_t status = 0;
    std::string printed;             // standard output during the step
    std::vector<std::string> calls;  // the library calls of the step, as logged

    // What makes two runs' steps the same step: op, id, type and input.
    std::string key() const;
};

// The value a get starts with, by type; a failed read must leave it as is.
json_t* Sentinel(const std::string& type);

// Standard output, diverted to a file while the tap lives and handed out step
// by step.
class OutputTap {
public:
    OutputTap();
    ~OutputTap();
    OutputTap(const OutputTap&) = delete;
    OutputTap& operator=(const OutputTap&) = delete;
    // What was printed since the last call.
    std::string take();

private:
    int saved_ = -1;
    int file_ = -1;
    long offset_ = 0;
};

class ModulePass {
public:
    // `sim` is the simulated library the module reaches; its call log is
    // started and cleared step by step. `afterCapability`, when given, runs
    // between the capability step and the first read (to change the board
    // library's behaviour once the module has discovered the board).
    ModulePass(SimControl& sim, OutputTap& tap, std::function<void()> afterCapability = {});

    std::vector<Step> run();

private:
    template <typename Call>
    Step step(const std::string& op, Call call);

    SimControl& sim_;
    OutputTap& tap_;
    std::function<void()> afterCapability_;
};

}  // namespace vtest
