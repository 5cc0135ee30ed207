// voractl's command line, read by the command table: what each option sets,
// and the table's shape. The table itself (CommandTable.cpp) names every
// command and option once; usage, each command's help, dispatch and the
// shell completion's lists are all made from it.
#pragma once

#include <jansson.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Simulation.h"
#include "Style.h"

namespace voractl {

struct Context;
struct CommandSpec;

struct Options {
    std::string modulePath;
    SimulationRequest simulation;
    ColorMode color = ColorMode::Auto;
    bool quiet = false;          // --quiet: the module's lines dropped
    bool raw = false;            // --raw: the module's values, unconverted
    bool help = false;           // --help: the usage, and nothing done
    bool version = false;        // --version
    const CommandSpec* command = nullptr;
    std::vector<std::string> arguments;
    bool json = false;
    bool all = false;            // list --all: every item in its own row
    bool force = false;          // get/set --force: no check against the document
    std::optional<json_type> type;  // get/set --type
    double interval = 2.0;       // watch, record, serve --interval, seconds
    double duration = 0.0;       // record --duration, seconds; 0: one reading
    long count = 0;              // watch --count; 0: until interrupted
    bool changes = false;        // watch --changes: only what changed, as gpiomon reports edges
    std::string format;          // export --format
    std::string output;          // export, record --output; empty: standard output
    bool redact = false;         // record --redact
    std::string listen;          // serve --listen
    std::string webConfig;       // serve --web-config
};

// How an option takes its value.
enum class Takes {
    Nothing,   // --json
    Value,     // --output FILE or --output=FILE
    Attached,  // --sim or --sim=PROFILE: a value only after "="
};

// What the shell completes an option's value with.
enum class Completes { Nothing, Files, Words };

struct OptionSpec {
    const char* name;             // "--output"
    const char* alias;            // "-q"; null: none
    Takes takes;
    const char* value;            // "FILE"; the words it takes, "senml|prometheus"
    Completes completes;
    // Sets the option; `value` is null when none was given (Nothing, and
    // Attached without "="). Throws a usage ToolError for a wrong value.
    void (*take)(Options& options, const char* value);
    // Only with --sim: it chooses or changes the simulated board.
    bool simulated = false;
};

// An option as one command (or voractl itself) takes it.
struct OptionUse {
    const OptionSpec* option;
    const char* help;
    bool required = false;
    // An option it goes with, and what it does that needs that one (for
    // the error when that one is missing); the synopsis shows it inside.
    const OptionSpec* with = nullptr;
    const char* does = nullptr;
};

// What the shell completes a command's arguments with.
enum class Arguments { None, Groups, Items, Settable, Commands };

struct CommandSpec {
    const char* name;
    const char* summary;   // for the usage: "read items"
    std::vector<OptionUse> options;
    // The arguments, one synopsis line each: {"NAME=VALUE...", "ITEM VALUE"}.
    std::vector<const char*> forms;
    size_t minArguments;
    size_t maxArguments;
    // The usage error for another number of arguments; null: "takes no
    // arguments".
    const char* wrongArguments;
    Arguments completes;
    const char* description;  // the help between the synopsis and the options
    const char* notes;        // after the options; null: none
    // Runs the command: the exit status, 0, or 1 when the module or the
    // board failed.
    int (*run)(Context& context);
    // Most commands need the module up before they start; one that opens
    // it itself says false (serve keeps retrying, record records a module
    // that does not come up).
    bool opensModule = true;
    // Done before the simulation starts (and the process runs again under
    // it); null: nothing.
    void (*prepare)(Options& options) = nullptr;
};

struct CommandLine {
    const char* version;
    const char* usageHead;  // before the commands
    std::vector<CommandSpec> commands;
    const char* afterCommands;
    std::vector<OptionUse> options;  // voractl's own, before the command
    const char* usageTail;  // after the options
};

// Reads the command line by `table`. Prints the help, version or
// completion lists asked for and exits 0; throws a usage ToolError for a
// wrong command line.
Options ParseOptions(int argc, char** argv, const CommandLine& table);

// The usage, and the help of one command.
std::string UsageText(const CommandLine& table);
std::string HelpText(const CommandSpec& command);

}  // namespace voractl
