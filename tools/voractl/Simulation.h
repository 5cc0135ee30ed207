// Running voractl against the board simulator: the process re-executes
// itself under the path redirection, with the simulated library of the
// chosen generation in place of the real one.
#pragma once

#include <string>

namespace voractl {

struct SimulationRequest {
    bool enabled = false;
    std::string profile;           // board profile or recording; empty: built-in board
    std::string generation;        // "4", "3" or "eapi"; empty: 4, or the recording's
    bool reset = false;            // start again from the profile
    bool trace = false;            // every board library call on standard error
    bool timing = false;           // a recording replayed at its recorded speed
    int record = -1;               // a descriptor to hand the board library's answers over
};

// Unless already done, sets up the path redirection (the simulated library
// in place of the real one with `enabled`; a stand-in in front of the board
// library to trace or record its calls, for voractl record or VORA_RECORD
// in the environment) and re-executes the process with
// `argv`; returns when nothing needs it, or the process already runs so (or
// on error, by throwing ToolError).
//
// The simulated board is kept between runs in a state file per user,
// generation and profile (VORA_SIM_STATE, unless the environment names one),
// so that a "set" is seen by a later "get". The state starts again from the
// profile when the profile (or the simulated library) is newer than the
// state, or when `reset` asks for it. A recording is replayed by the
// simulated library of its generation.
void EnterSimulation(SimulationRequest request, char** argv);

// The state file of the simulated board when voractl runs simulated, else "".
std::string SimulatedBoardState();

}  // namespace voractl
