#include "Options.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>

#include "Items.h"
#include "ToolError.h"

namespace voractl {

namespace {

const char kUsage[] =
    "Usage: voractl [OPTIONS] COMMAND [ARGS]\n"
    "\n"
    "Inspect and drive a board through the VORADrv driver module.\n"
    "\n"
    "Commands:\n"
    "  info                              the module and the board library in use\n"
    "  caps                              print the capability document\n"
    "  list [--all] [--json] [GROUP...]  every item with its current value\n"
    "  get [--json] [--type T] ITEM...   read items\n"
    "  set [--json] NAME=VALUE...        write items (or: set ITEM VALUE)\n"
    "  watch [--json] [--interval S] [--count N] [ITEM|GROUP...]\n"
    "                                    follow readings live (default: every\n"
    "                                    hardware-monitor sensor)\n"
    "  export --format senml|prometheus [--output FILE]\n"
    "                                    every readable item for monitoring\n"
    "  record [--redact] [--output FILE] [--duration S [--interval S]]\n"
    "                                    the board library's answers, as a file\n"
    "                                    that --sim=FILE replays\n"
    "  serve [--listen ADDR:PORT] [--web-config FILE]\n"
    "                                    the board as a Prometheus target\n"
    "\n"
    "ITEM is an item id (0x1020201 or 16908801) or a path as \"list\" shows it,\n"
    "whole (\"Hardware Monitor/Voltage/VCORE\") or by its last parts when they\n"
    "name one item (\"VCORE\", \"DI0/Level\"); GROUP names a block or group the\n"
    "same way (\"GPIO\", \"Voltage\").\n"
    "\n"
    "Options:\n"
    "  --module PATH          the module to load (default: the installed one,\n"
    "                         else the one in the build tree)\n"
    "  --sim[=PROFILE]        run against the board simulator; PROFILE is a board\n"
    "                         profile file (default: the simulated library's board)\n"
    "                         or a recording, which the simulator replays\n"
    "  --sim-generation GEN   with --sim: simulated board library 4 (default), 3\n"
    "                         or eapi\n"
    "  --sim-reset            with --sim: start the simulated board again from its\n"
    "                         profile\n"
    "  --timing               with --sim=RECORDING: each call takes as long as it\n"
    "                         took when recorded\n"
    "  --trace                every call into the board library on standard error\n"
    "  --raw                  show the module's values as the board library gives\n"
    "                         them (tenths of a kelvin on an Embedded API library)\n"
    "  -q, --quiet            drop the module's own messages\n"
    "  --color[=WHEN]         colour the output: auto (default: on a terminal),\n"
    "                         always or never; NO_COLOR in the environment turns\n"
    "                         colour off whatever WHEN says\n"
    "  -h, --help             show this help; \"voractl help COMMAND\" for a command\n"
    "  --version              show voractl's version\n"
    "\n"
    "The simulated board keeps what is written to it from one run to the next\n"
    "(in $XDG_RUNTIME_DIR, else /tmp/voractl-UID; VORA_SIM_STATE names another\n"
    "file) until its profile changes or --sim-reset is given.\n"
    "\n"
    "Data goes to standard output; the module's own messages go to standard\n"
    "error as \"module: ...\", voractl's as \"voractl: ...\".\n"
    "\n"
    "Exit status: 0 success; 1 the module or the board failed (an item that\n"
    "cannot be read, a refused or failed write, no board); 2 usage error.\n";

struct CommandSpec {
    const char* help;
    std::set<std::string> options;  // the options the command takes
    size_t minArguments;
    size_t maxArguments;
};

const std::map<std::string, CommandSpec> kCommands = {
    {"info",
     {"Usage: voractl info [--json]\n\nShow the module in use (its file and version), the board "
      "library it bound (its\nfile and generation) and how many items each block publishes.\n",
      {"--json"}, 0, 0}},
    {"caps",
     {"Usage: voractl caps\n\nPrint the capability document the module publishes, as indented "
      "JSON.\n",
      {"--json"}, 0, 0}},
    {"list",
     {"Usage: voractl list [--all] [--json] [GROUP...]\n\nRead every item (or those of the "
      "GROUPs) and show them grouped by block and\ngroup: id, name, current value with its unit, "
      "the published limits, and\n\"read-only\" for an item that cannot be set. GPIO pins are one "
      "row each, as\ngpioinfo shows lines: number, name, direction, level. \"N/A\" stands for a\n"
      "value that could not be read.\n\n"
      "  --all    every item in a row of its own, GPIO pins too\n"
      "  --json   a JSON array of records instead; an unreadable value is\n"
      "           null, with an \"error\" member beside it\n",
      {"--json", "--all"}, 0, SIZE_MAX}},
    {"get",
     {"Usage: voractl get [--json] [--type int|real|string] [--force] ITEM...\n\nRead items and "
      "print their values, one per line (with the item's path when\nthere are several). A GROUP "
      "reads every item of it.\n\n"
      "  --json    print JSON records as \"list --json\" does\n"
      "  --type    the JSON type to read with; needed for an id the capability\n"
      "            document does not publish\n"
      "  --force   read a number as text, or text as a number\n",
      {"--json", "--type", "--force"}, 1, SIZE_MAX}},
    {"set",
     {"Usage: voractl set [--json] [--force] NAME=VALUE...\n"
      "       voractl set [--json] [--type int|real|string] [--force] ITEM VALUE\n\n"
      "Write each VALUE to its item, then read it back. Every value is checked\n"
      "against the capability document before any is written: the item must be\n"
      "settable, a number within the published min..max and the item's 32-bit\n"
      "range, a two-state item 0, 1 or one of on/off, high/low, in/out,\n"
      "true/false, active/inactive. A ranged number may also be given as a\n"
      "percentage of its range (50%) or relative to its present value (+10%,\n"
      "-10). A value the board reads back differently fails.\n\n"
      "  --json    print each item's record as read back, with \"written\" and\n"
      "            \"outcome\"\n"
      "  --type    the JSON type to write with (with --force)\n"
      "  --force   send the value unchecked, for a board whose document is wrong\n",
      {"--json", "--type", "--force"}, 1, SIZE_MAX}},
    {"watch",
     {"Usage: voractl watch [--json] [--interval SECONDS] [--count N] [ITEM|GROUP...]\n\n"
      "Read the items again and again: on a terminal the table is redrawn in place,\n"
      "otherwise each sample is one line with its time. A value that changed since\n"
      "the sample before is marked with \"*\". Ctrl-C ends the watch.\n\n"
      "ITEM is an id or path; GROUP is a block or group such as \"GPIO\" or\n"
      "\"Voltage\". Without any, every hardware-monitor sensor.\n\n"
      "  --interval  seconds between samples (default 2; fractions allowed)\n"
      "  --count     stop after N samples (default: until interrupted)\n"
      "  --json      one JSON document per line and sample: {\"time\", \"items\"},\n"
      "              the items as \"list --json\" records with \"changed\"\n",
      {"--json", "--interval", "--count"}, 0, SIZE_MAX}},
    {"export",
     {"Usage: voractl export --format senml|prometheus [--output FILE]\n\n"
      "Read every item and write the readable ones for a monitoring system:\n\n"
      "  senml        a SenML pack (RFC 8428): a JSON array of records\n"
      "  prometheus   the Prometheus text format, for node_exporter's textfile\n"
      "               collector (metric names start with voradrv_)\n\n"
      "  --output FILE  a regular FILE is replaced atomically (a temporary file\n"
      "                 renamed over it, the file's mode kept), so that a reader\n"
      "                 never sees half an export; a symbolic link's target is\n"
      "                 written; a FIFO, character device or socket is written\n"
      "                 to as it is, and /dev/stdout through voractl's own\n"
      "                 standard output (so >> appends); \"-\" and no --output:\n"
      "                 standard output\n\n"
      "An item that cannot be read is left out and named on standard error, and\n"
      "the exit status is 1; the rest is still written.\n",
      {"--format", "--output"}, 0, 0}},
    {"record",
     {"Usage: voractl record [--redact] [--output FILE] [--duration SECONDS [--interval SECONDS]]\n\n"
      "Record the board library: initialise the module, ask for its capability,\n"
      "read every item with its own JSON type and shut it down, with a stand-in\n"
      "in front of the board library that keeps every distinct call and the\n"
      "library's answers to it, in order, with the time each took. Nothing is\n"
      "written to the board. The recording is a board: voractl --sim=FILE\n"
      "replays it, anywhere, as the board answered. A module that does not come\n"
      "up and items that cannot be read are named, and recorded.\n\n"
      "  --duration S   read every item every --interval seconds (default 2) for\n"
      "                 S seconds, so that readings that drift and faults that\n"
      "                 come and go are recorded as they happened; Ctrl-C ends\n"
      "                 it early and keeps what was recorded\n"
      "  --redact       keep only the board's manufacturer, name, revisions,\n"
      "                 versions, platform type, sensor and panel names and its\n"
      "                 readings; replace every other text and every word of the\n"
      "                 management network's values with placeholders of the\n"
      "                 same form\n"
      "  --output FILE  where to write it, as export writes (default: standard\n"
      "                 output)\n",
      {"--redact", "--output", "--duration", "--interval"}, 0, 0}},
    {"serve",
     {"Usage: voractl serve [--listen ADDRESS:PORT] [--web-config FILE]\n\n"
      "Serve the board's metrics over HTTP for Prometheus, until SIGTERM or\n"
      "Ctrl-C. The module is loaded once; every scrape of /metrics reads every\n"
      "item again and answers with the families of \"export --format prometheus\"\n"
      "and voradrv_up, voradrv_scrape_duration_seconds. OpenMetrics when the\n"
      "scraper asks for it, gzip when it accepts it. \"/\" is a live page of the\n"
      "board, drawn from the capability document's hints. Nothing over HTTP\n"
      "changes the board. A module that does not come up is tried again, and\n"
      "meanwhile voradrv_up is 0.\n\n"
      "  --listen ADDRESS:PORT  where to listen (default 127.0.0.1:19719);\n"
      "                         \"[::1]:PORT\" for IPv6, \":PORT\" for every\n"
      "                         address, port 0 for any free one\n"
      "  --interval SECONDS     how often the board page's samples are read\n"
      "                         (default 2; the page keeps the last 300)\n"
      "  --web-config FILE      TLS and basic auth, in the web configuration format\n"
      "                         of Prometheus's exporters: tls_server_config\n"
      "                         (cert_file, key_file, min_version) and\n"
      "                         basic_auth_users (bcrypt hashes)\n",
      {"--listen", "--web-config", "--interval"}, 0, 0}},
};

[[noreturn]] void Print(const char* text) {
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

// Seconds from `least` to `most` for `option`.
double ParseSeconds(const char* option, const std::string& text, double least, double most) {
    char* end = nullptr;
    errno = 0;
    const double seconds = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno != 0 || !std::isfinite(seconds) || seconds < least ||
        seconds > most) {
        char range[64];
        std::snprintf(range, sizeof range, "from %g to %g", least, most);
        throw ToolError(std::string(option) + " must be a number of seconds " + range + ", not \"" + text + "\"",
                        true);
    }
    return seconds;
}

long ParseCount(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const long count = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno != 0 || count < 1) {
        throw ToolError("--count must be a whole number from 1, not \"" + text + "\"", true);
    }
    return count;
}

// The command's own options and arguments, from argv[i] on.
void ParseCommand(Options& options, int i, int argc, char** argv) {
    const CommandSpec& command = kCommands.at(options.command);
    bool interval = false;
    for (; i < argc; ++i) {
        const std::string arg = argv[i];
        const std::string name = arg.substr(0, arg.find('='));
        std::string value;
        if (arg == "-h" || arg == "--help") {
            Print(command.help);
        } else if (arg == "--") {
            options.arguments.insert(options.arguments.end(), argv + i + 1, argv + argc);
            break;
        } else if (arg.rfind("--", 0) != 0 || arg.size() == 2) {
            options.arguments.push_back(arg);
        } else if (command.options.count(name) == 0) {
            throw ToolError("unknown option " + name + " for " + options.command, true);
        } else if (arg == "--json") {
            options.json = true;
        } else if (arg == "--all") {
            options.all = true;
        } else if (arg == "--force") {
            options.force = true;
        } else if (arg == "--redact") {
            options.redact = true;
        } else if (OptionValue(arg, "--type", i, argc, argv, value)) {
            ParseType(value);
            options.type = argv[i] + (arg == "--type" ? 0 : std::strlen("--type="));
        } else if (OptionValue(arg, "--interval", i, argc, argv, value)) {
            options.interval = ParseSeconds("--interval", value, 0.01, 86400.0);
            interval = true;
        } else if (OptionValue(arg, "--duration", i, argc, argv, value)) {
            options.duration = ParseSeconds("--duration", value, 0.0, 7 * 86400.0);
        } else if (OptionValue(arg, "--count", i, argc, argv, value)) {
            options.count = ParseCount(value);
        } else if (OptionValue(arg, "--format", i, argc, argv, value)) {
            if (value != "senml" && value != "prometheus") {
                throw ToolError("--format must be senml or prometheus, not \"" + value + "\"",
                                true);
            }
            options.format = value;
        } else if (OptionValue(arg, "--listen", i, argc, argv, value)) {
            options.listen = value;
        } else if (OptionValue(arg, "--web-config", i, argc, argv, value)) {
            if (value.empty()) {
                throw ToolError("--web-config needs a file name", true);
            }
            options.webConfig = value;
        } else if (OptionValue(arg, "--output", i, argc, argv, value)) {
            if (value.empty()) {
                throw ToolError("--output needs a file name (- for standard output)", true);
            }
            options.output = value;
        } else {
            throw ToolError(name + " takes no value", true);
        }
    }
    const size_t n = options.arguments.size();
    if (n < command.minArguments || n > command.maxArguments) {
        const char* wanted = options.command == "get"   ? "get needs at least one ITEM"
                             : options.command == "set" ? "set needs NAME=VALUE or ITEM VALUE"
                                                        : nullptr;
        throw ToolError(wanted != nullptr ? wanted : options.command + " takes no arguments",
                        true);
    }
    if (options.command == "record" && interval && options.duration == 0.0) {
        throw ToolError("record --interval reads the board again and again: give --duration too", true);
    }
    if (options.command == "export" && options.format.empty()) {
        throw ToolError("export needs --format senml or --format prometheus", true);
    }
}

}  // namespace

Options ParseOptions(int argc, char** argv) {
    Options options;
    bool simOnly = false;  // an option that makes sense with --sim only
    int i = 1;
    for (; i < argc; ++i) {
        const std::string arg = argv[i];
        std::string value;
        if (arg == "-h" || arg == "--help") {
            Print(kUsage);
        } else if (arg == "--version") {
            Print("voractl " VORACTL_VERSION "\n");
        } else if (OptionValue(arg, "--module", i, argc, argv, value)) {
            if (value.empty()) {
                throw ToolError("--module needs a file name", true);
            }
            options.modulePath = value;
        } else if (arg == "--sim") {
            options.simulation.enabled = true;
        } else if (arg.rfind("--sim=", 0) == 0) {
            options.simulation.enabled = true;
            options.simulation.profile = arg.substr(6);
            if (options.simulation.profile.empty()) {
                throw ToolError("--sim= needs a board profile file", true);
            }
        } else if (OptionValue(arg, "--sim-generation", i, argc, argv, value)) {
            options.simulation.generation = value;
            simOnly = true;
        } else if (arg == "--sim-reset") {
            options.simulation.reset = true;
            simOnly = true;
        } else if (arg == "--timing") {
            options.simulation.timing = true;
            simOnly = true;
        } else if (arg == "--raw") {
            options.raw = true;
        } else if (arg == "--trace") {
            options.simulation.trace = true;
        } else if (arg == "-q" || arg == "--quiet") {
            options.quiet = true;
        } else if (arg == "--color") {
            options.color = ColorMode::Always;
        } else if (arg.rfind("--color=", 0) == 0) {
            options.color = ParseColorMode(arg.substr(8));
        } else if (arg.rfind("-", 0) == 0) {
            throw ToolError("unknown option " + arg, true);
        } else {
            break;
        }
    }
    if (simOnly && !options.simulation.enabled) {
        throw ToolError("--sim-generation, --sim-reset and --timing choose the simulated board: "
                        "give --sim too", true);
    }
    if (i >= argc) {
        throw ToolError("no command given (see voractl --help)", true);
    }
    options.command = argv[i++];
    if (options.command == "help") {
        if (i == argc) {
            Print(kUsage);
        }
        const auto topic = kCommands.find(argv[i]);
        if (topic == kCommands.end() || i + 1 < argc) {
            throw ToolError("no help on \"" + std::string(argv[i]) + "\"; commands: info, caps, "
                            "list, get, set, watch, export, record, serve", true);
        }
        Print(topic->second.help);
    }
    if (kCommands.count(options.command) == 0) {
        throw ToolError("unknown command \"" + options.command + "\" (see voractl --help)", true);
    }
    ParseCommand(options, i, argc, argv);
    return options;
}

}  // namespace voractl
