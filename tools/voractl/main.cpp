// voractl: inspect and drive a board through the VORADrv module, loaded the
// way a host framework loads it.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "Format.h"
#include "Module.h"
#include "Simulation.h"

using namespace voractl;

namespace {

const char kUsage[] =
    "Usage: voractl [OPTIONS] COMMAND [ARGS]\n"
    "\n"
    "Inspect and drive a board through the VORADrv driver module.\n"
    "\n"
    "Commands:\n"
    "  caps                              print the capability document\n"
    "  list [--json]                     every item with its current value\n"
    "  get [--json] [--type T] ITEM...   read items\n"
    "  set [--type T] ITEM VALUE         write an item\n"
    "\n"
    "ITEM is an item id (0x1020201) or a path as \"list\" shows it, for example\n"
    "\"Hardware Monitor/Voltage/VCORE\" or \"Platform Information/Board name\".\n"
    "\n"
    "Options:\n"
    "  --module PATH          the module to load (default: the installed one,\n"
    "                         else the one in the build tree)\n"
    "  --sim[=PROFILE]        run against the board simulator; PROFILE is a board\n"
    "                         profile file (default: the simulated library's board)\n"
    "  --sim-generation GEN   simulated board library: 4 (default), 3 or eapi\n"
    "  --sim-reset            start the simulated board again from its profile\n"
    "  -h, --help             show this help; \"voractl COMMAND --help\" for a command\n"
    "\n"
    "The simulated board keeps what is written to it from one run to the next\n"
    "(in $XDG_RUNTIME_DIR, else /tmp/voractl-UID; VORA_SIM_STATE names another\n"
    "file) until its profile changes or --sim-reset is given.\n"
    "\n"
    "The module's own diagnostics go to standard output as the module prints them\n"
    "(to standard error with --json, so the JSON stays whole); voractl's errors go\n"
    "to standard error.\n"
    "\n"
    "Exit status: 0 success, 1 the module or the board reported a failure,\n"
    "2 usage error.\n";

const std::map<std::string, const char*> kCommandHelp = {
    {"caps",
     "Usage: voractl caps\n\nPrint the capability document the module publishes, as indented "
     "JSON.\n"},
    {"list",
     "Usage: voractl list [--json]\n\nRead every item of the capability document and print one "
     "line per item:\nits id, block, group, name, current value with unit and access (r or rw).\n"
     "\n  --json   print a JSON array instead; an unreadable value is null, with an\n"
     "           \"error\" member beside it\n"},
    {"get",
     "Usage: voractl get [--json] [--type int|real|string] ITEM...\n\nRead items and print their "
     "values, one per line (with the item's path when\nthere are several).\n\n"
     "  --json   print JSON records as \"list --json\" does\n"
     "  --type   the JSON type to read with; needed for an id the capability\n"
     "           document does not publish\n"},
    {"set",
     "Usage: voractl set [--type int|real|string] ITEM VALUE\n\nWrite VALUE to ITEM. The value "
     "is passed to the module as the JSON type of the\nitem's element in the capability document "
     "(\"v\": real or integer, \"sv\":\nstring, \"bv\": integer) unless --type says otherwise. The "
     "board library\ndecides whether the value is accepted.\n"},
};

struct Options {
    std::string modulePath;
    SimulationRequest simulation;
    std::string command;
    std::vector<std::string> arguments;
    bool json = false;
    const char* type = nullptr;
};

[[noreturn]] void PrintHelp(const char* text) {
    std::fputs(text, stdout);
    std::exit(0);
}

// The value of an option given as "--name VALUE" or "--name=VALUE".
bool OptionValue(const std::string& arg, const char* name, int& i, int argc, char** argv,
                 std::string& value) {
    const std::string prefix = std::string(name) + "=";
    if (arg.rfind(prefix, 0) == 0) {
        value = arg.substr(prefix.size());
        return true;
    }
    if (arg != name) {
        return false;
    }
    if (i + 1 >= argc) {
        throw ToolError(std::string(name) + " needs a value", true);
    }
    value = argv[++i];
    return true;
}

Options Parse(int argc, char** argv) {
    Options options;
    int i = 1;
    for (; i < argc; ++i) {
        const std::string arg = argv[i];
        std::string value;
        if (arg == "-h" || arg == "--help") {
            PrintHelp(kUsage);
        } else if (OptionValue(arg, "--module", i, argc, argv, value)) {
            options.modulePath = value;
        } else if (arg == "--sim") {
            options.simulation.enabled = true;
        } else if (arg.rfind("--sim=", 0) == 0) {
            options.simulation.enabled = true;
            options.simulation.profile = arg.substr(6);
        } else if (OptionValue(arg, "--sim-generation", i, argc, argv, value)) {
            options.simulation.generation = value;
        } else if (arg == "--sim-reset") {
            options.simulation.reset = true;
        } else if (arg.rfind("-", 0) == 0) {
            throw ToolError("unknown option " + arg, true);
        } else {
            break;
        }
    }
    if (i >= argc) {
        throw ToolError("no command given (see voractl --help)", true);
    }
    options.command = argv[i++];
    if (options.command == "help") {
        PrintHelp(i < argc && kCommandHelp.count(argv[i]) ? kCommandHelp.at(argv[i]) : kUsage);
    }
    if (kCommandHelp.count(options.command) == 0) {
        throw ToolError("unknown command \"" + options.command + "\" (see voractl --help)", true);
    }
    for (; i < argc; ++i) {
        const std::string arg = argv[i];
        std::string value;
        if (arg == "-h" || arg == "--help") {
            PrintHelp(kCommandHelp.at(options.command));
        } else if (arg == "--json" && options.command != "set" && options.command != "caps") {
            options.json = true;
        } else if ((options.command == "get" || options.command == "set") &&
                   OptionValue(arg, "--type", i, argc, argv, value)) {
            ParseType(value);
            options.type = argv[i] + (arg == "--type" ? 0 : std::strlen("--type="));
        } else if (arg == "--") {
            options.arguments.insert(options.arguments.end(), argv + i + 1, argv + argc);
            break;
        } else if (arg.rfind("--", 0) == 0 && arg.size() > 2) {
            throw ToolError("unknown option " + arg + " for " + options.command, true);
        } else {
            options.arguments.push_back(arg);
        }
    }
    const size_t n = options.arguments.size();
    if ((options.command == "caps" || options.command == "list") && n != 0) {
        throw ToolError(options.command + " takes no arguments", true);
    }
    if (options.command == "get" && n == 0) {
        throw ToolError("get needs at least one ITEM", true);
    }
    if (options.command == "set" && n != 2) {
        throw ToolError("set needs ITEM and VALUE", true);
    }
    return options;
}

// With --json, voractl's output goes to the original standard output and
// the module's diagnostics (which it prints on standard output) to standard
// error, so the JSON document stays whole.
std::FILE* OutputStream(bool json) {
    if (!json) {
        return stdout;
    }
    std::fflush(stdout);
    const int original = dup(1);
    std::FILE* out = original >= 0 ? fdopen(original, "w") : nullptr;
    if (out == nullptr) {
        throw ToolError("cannot set up the output");
    }
    dup2(2, 1);
    return out;
}

int Run(const Options& options) {
    std::FILE* out = OutputStream(options.json);
    Module module(options.modulePath.empty() ? DefaultModulePath() : options.modulePath);
    const uint32_t status = module.initialize();
    if (status != VORADRV_STATUS_SUCCESS) {
        std::fflush(stdout);
        std::fprintf(stderr, "voractl: cannot initialise the module: %s\n",
                     StatusText(status).c_str());
        return 1;
    }
    std::unique_ptr<json_t, decltype(&json_decref)> document(json_object(), &json_decref);
    const uint32_t capability = module.capability(document.get());
    if (capability != VORADRV_STATUS_SUCCESS) {
        std::fflush(stdout);
        std::fprintf(stderr, "voractl: cannot read the capability document: %s\n",
                     StatusText(capability).c_str());
        return 1;
    }
    Context context{module, document.get(), CollectItems(document.get()), out, options.json};
    int exitStatus = 0;
    if (options.command == "caps") {
        exitStatus = Caps(context);
    } else if (options.command == "list") {
        exitStatus = List(context);
    } else if (options.command == "get") {
        exitStatus = Get(context, options.arguments, options.type);
    } else {
        exitStatus = Set(context, options.arguments[0], options.arguments[1], options.type);
    }
    std::fflush(out);
    return exitStatus;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = Parse(argc, argv);
        EnterSimulation(options.simulation, argv);
        return Run(options);
    } catch (const ToolError& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "voractl: %s\n", e.what());
        return e.usage() ? 2 : 1;
    }
}
