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
    bool quiet = false;          // --quiet: the module's lines dropped
    bool raw = false;            // --raw: the module's values, unconverted
    std::string command;
    std::vector<std::string> arguments;
    bool json = false;
    bool all = false;            // list --all: every item in its own row
    bool force = false;          // get/set --force: no check against the document
    const char* type = nullptr;  // get/set --type
    double interval = 2.0;       // watch, record --interval, seconds
    double duration = 0.0;       // record --duration, seconds; 0: one reading
    long count = 0;              // watch --count; 0: until interrupted
    std::string format;          // export --format
    std::string output;          // export, record --output; empty: standard output
    bool redact = false;         // record --redact
    std::string listen;          // serve --listen
    std::string webConfig;       // serve --web-config
};

// Parses the command line. Prints the help or version asked for and exits
// 0; throws a usage ToolError for a wrong command line.
Options ParseOptions(int argc, char** argv);

}  // namespace voractl
