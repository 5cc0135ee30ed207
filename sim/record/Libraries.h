// The board libraries' functions, from their tables (binding/), as
// signatures: what a recording of each library may hold.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Calls.h"

namespace vorarec {

struct Library {
    const char* name;        // "libVORA-4.00"
    const char* generation;  // "4", "3" or "eapi"
    uint32_t ok;             // the status of success: 1 on the third generation, else 0
    std::vector<Signature> functions;  // the initialise first

    // The function named `function`, or null when the library has none.
    const Signature* find(const std::string& function) const;
    // True for the library's initialise.
    bool initialises(const std::string& function) const { return function == functions.front().function; }
};

// The library of `generation`, or null for one there is not.
const Library* LibraryOf(const std::string& generation);

}  // namespace vorarec
