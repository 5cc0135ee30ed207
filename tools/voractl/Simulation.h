// Running voractl against the board simulator: the process re-executes
// itself under the path redirection, with the simulated library of the
// chosen generation in place of the real one.
#pragma once

#include <string>

namespace voractl {

struct SimulationRequest {
    bool enabled = false;
    std::string profile;           // board profile file; empty: built-in board
    std::string generation = "4";  // "4", "3" or "eapi"
    bool reset = false;            // start again from the profile
};

// Unless already done, sets up the redirection and re-executes the process
// with `argv`; returns only when the process already runs simulated (or on
// error, by throwing ToolError).
//
// The simulated board is kept between runs in a state file per user,
// generation and profile (VORA_SIM_STATE, unless the environment names one),
// so that a "set" is seen by a later "get". The state starts again from the
// profile when the profile (or the simulated library) is newer than the
// state, or when `reset` asks for it.
void EnterSimulation(const SimulationRequest& request, char** argv);

// The state file of the simulated board when voractl runs simulated, else "".
std::string SimulatedBoardState();

}  // namespace voractl
