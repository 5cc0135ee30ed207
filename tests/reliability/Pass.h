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

#include "Harness.h"

namespace vtest {

struct Step {
    std::string op;               // "init", "caps", "get", "set" or "uninit"
    std::string document;         // caps: the document (compact JSON)
    uint32_t id = 0;              // get and set
    json_type type = JSON_NULL;   // get and set: JSON_INTEGER, JSON_REAL or JSON_STRING
    std::string input;            // set: the value written (compact JSON)
    std::string output;           // get: the value after the call (compact JSON)
    uint32_t status = 0;
    std::string printed;             // standard output during the step
    std::vector<std::string> calls;  // the library calls of the step, as logged

    // What makes two runs' steps the same step: op, id, type and input.
    std::string key() const;
};

// Runs a pass with `out` capturing what the module prints and `sim`'s call
// log on. `afterCapability`, when given, runs between the capability step
// and the first read (to change the board library's behaviour once the
// module has discovered the board).
std::vector<Step> RunPass(SimControl& sim, StdoutCapture& out,
                          const std::function<void()>& afterCapability = {});

// The library calls of `steps`, each once in the order first made: the log
// line's function and key argument ("VoraBoardGetValue 0x21000"), with
// whether it was made while initialising and afterwards.
struct Made {
    std::string call;
    bool atInit = false;
    bool later = false;
};
std::vector<Made> CallsMade(const std::vector<Step>& steps);

}  // namespace vtest
