// Finding the board library and bringing it up.
#pragma once

#include <cstdint>

// Probes the fourth-generation, third-generation and EApi library files in
// this order and initialises the first one present through its binding,
// going on to the next when that fails. Returns 0 when a library is up;
// STATUS_ALREADY_INITIALIZED when a library says so (which ends the probe);
// otherwise the last initialise result, or STATUS_UNSUPPORTED when no file
// was found. Prints "[VORADrv] ... can not load" for each failure.
uint32_t ProbeBoardLibrary();
