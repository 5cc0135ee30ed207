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

// The lines of a text, without their line ends.
std::vector<std::string> Lines(const std::string& text);

// True when `voractl --sim --sim-generation GEN list` comes up, that is when
// the module serves that generation's board library.
bool GenerationServed(const std::string& generation);

}  // namespace vtest
