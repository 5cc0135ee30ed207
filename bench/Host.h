// The benchmarks' view of the module and the board library: the module
// opened with dlopen and driven through its entry points, as a host does,
// and functions of the simulated board library called directly, at the path
// the module reaches them through (run the benchmarks under
// sim/run-simulated).
#pragma once

#include "ModuleHost.h"

namespace vbench {

using Module = voradrv::host::ModuleHost;

// The module built beside the benchmarks; exits the program with a message
// when it cannot be opened.
Module& LoadModule();

// Function `name` of the board library the module probes first at
// /usr/lib, `library` ("libVORA-4.00"); exits with a message when missing.
void* BoardFunction(const char* library, const char* name);

template <typename Fn>
Fn BoardFunction(const char* library, const char* name) {
    return reinterpret_cast<Fn>(BoardFunction(library, name));
}

// The benchmark's name for the board: the file name of the profile in
// VORA_SIM_BOARD without ".json", or "built-in".
const char* BoardName();

}  // namespace vbench
