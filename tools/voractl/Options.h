// voractl's command line.
#pragma once

#include <string>
#include <vector>

#include "Simulation.h"
#include "Style.h"

namespace voractl {

struct Options {
    std::string modulePath;
    SimulationRequest simulation;
    ColorMode color = ColorMode::Auto;
    std::string command;
    std::vector<std::string> arguments;
    bool json = false;
    const char* type = nullptr;  // get/set --type
    double interval = 2.0;       // watch --interval, seconds
    long count = 0;              // watch --count; 0: until interrupted
    std::string format;          // export --format
    std::string output;          // export --output; empty: standard output
};

// Parses the command line. Prints the help asked for and exits 0; throws a
// usage ToolError for a wrong command line.
Options ParseOptions(int argc, char** argv);

}  // namespace voractl
