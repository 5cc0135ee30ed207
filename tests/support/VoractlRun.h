// Running the built voractl against a simulated board of the test's own.
#pragma once

#include <string>
#include <vector>

#include "RunTool.h"

namespace vtest {

// The built voractl.
std::string VoractlPath();

// Sets the environment so that voractl's simulated board is kept in a file
// of this test process alone (removed at exit) and the sensors stand still
// (VORA_SIM_TIME=0).
void UseOwnSimulatedBoard();

// Runs voractl with UseOwnSimulatedBoard().
ToolResult Voractl(const std::vector<std::string>& arguments);

// The arguments (to go first) that make voractl load the stand-in module
// (support/StandInModule.c) in front of the built one. A non-empty
// `failRead` (an id such as "0x1020201") makes that item's reads fail; a
// non-empty `log` names a file, emptied here, that receives a line for each
// initialise and uninitialise.
std::vector<std::string> StandIn(const std::string& failRead, const std::string& log = "");

}  // namespace vtest
