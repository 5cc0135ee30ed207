// The ways the fault sweep makes one board library call misbehave, and
// which of them apply to a function. What a function takes and gives is read
// from its library's table (binding/), so a function added there is swept
// without a word here.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Harness.h"

namespace vtest {

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

struct LibraryFunction {
    std::string name;
    bool init = false;     // the library's initialise
    bool text = false;     // answers a text through a buffer and a length
    bool numbers = false;  // writes numbers through pointers
    bool writes = false;   // changes the board
};
// Every function of `generation`'s library, from its table.
std::vector<LibraryFunction> LibraryFunctions(Generation generation);
// The function named `name` ("VoraBoardGetValue"), or null.
const LibraryFunction* FunctionNamed(Generation generation, const std::string& name);

// The kinds that apply to `function` on `generation`'s library.
std::vector<Kind> KindsFor(Generation generation, const LibraryFunction& function);

// The simulator's fault entry for `call` ("VoraBoardGetValue 0x21000": the
// function and, when given, its key argument) misbehaving as `kind`.
std::string FaultJson(const std::string& call, Kind kind);

}  // namespace vtest
