#include "CommandTable.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Commands.h"
#include "Export.h"
#include "Format.h"
#include "Items.h"
#include "Record.h"
#include "Serve.h"
#include "ToolError.h"
#include "Watch.h"
#include "Writing.h"

namespace voractl {

namespace {

std::string Given(const char* value) { return value != nullptr ? value : ""; }

// A file name, "" refused with `refusal`.
std::string FileName(const char* value, const char* refusal) {
    if (value == nullptr || *value == '\0') {
        throw ToolError(refusal, true);
    }
    return value;
}

// Seconds from `least` to `most` for `option`.
double Seconds(const char* option, const char* value, double least, double most) {
    const std::string text = Given(value);
    char* end = nullptr;
    errno = 0;
    const double seconds = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno != 0 || !std::isfinite(seconds) || seconds < least ||
        seconds > most) {
        char range[64];
        std::snprintf(range, sizeof range, "from %g to %g", least, most);
        throw ToolError(std::string(option) + " must be a number of seconds " + range + ", not \"" +
                            text + "\"", true);
    }
    return seconds;
}

long Count(const char* value) {
    const std::string text = Given(value);
    char* end = nullptr;
    errno = 0;
    const long count = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno != 0 || count < 1) {
        throw ToolError("--count must be a whole number from 1, not \"" + text + "\"", true);
    }
    return count;
}

std::string Format(const char* value) {
    const std::string text = Given(value);
    if (text != "senml" && text != "prometheus") {
        throw ToolError("--format must be senml or prometheus, not \"" + text + "\"", true);
    }
    return text;
}

// voractl's own options.
const OptionSpec kModule{"--module", nullptr, Takes::Value, "PATH", Completes::Files,
    [](Options& o, const char* v) { o.modulePath = FileName(v, "--module needs a file name"); }};
const OptionSpec kSim{"--sim", nullptr, Takes::Attached, "PROFILE", Completes::Files,
    [](Options& o, const char* v) {
        o.simulation.enabled = true;
        o.simulation.profile = v != nullptr ? FileName(v, "--sim= needs a board profile file") : "";
    }};
const OptionSpec kSimGeneration{"--sim-generation", nullptr, Takes::Value, "4|3|eapi",
    Completes::Words, [](Options& o, const char* v) { o.simulation.generation = v; }, true};
const OptionSpec kSimReset{"--sim-reset", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.simulation.reset = true; }, true};
const OptionSpec kTiming{"--timing", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.simulation.timing = true; }, true};
const OptionSpec kTrace{"--trace", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.simulation.trace = true; }};
const OptionSpec kRaw{"--raw", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.raw = true; }};
const OptionSpec kQuiet{"--quiet", "-q", Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.quiet = true; }};
const OptionSpec kColor{"--color", nullptr, Takes::Attached, "auto|always|never", Completes::Words,
    [](Options& o, const char* v) { o.color = v != nullptr ? ParseColorMode(v) : ColorMode::Always; }};
const OptionSpec kHelp{"--help", "-h", Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.help = true; }};
const OptionSpec kVersion{"--version", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.version = true; }};

// The commands' options.
const OptionSpec kJson{"--json", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.json = true; }};
const OptionSpec kAll{"--all", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.all = true; }};
const OptionSpec kForce{"--force", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.force = true; }};
const OptionSpec kType{"--type", nullptr, Takes::Value, "int|real|string", Completes::Words,
    [](Options& o, const char* v) { o.type = ParseType(v); }};
const OptionSpec kInterval{"--interval", nullptr, Takes::Value, "SECONDS", Completes::Nothing,
    [](Options& o, const char* v) { o.interval = Seconds("--interval", v, 0.01, 86400.0); }};
const OptionSpec kDuration{"--duration", nullptr, Takes::Value, "SECONDS", Completes::Nothing,
    [](Options& o, const char* v) { o.duration = Seconds("--duration", v, 0.0, 7 * 86400.0); }};
const OptionSpec kCount{"--count", nullptr, Takes::Value, "N", Completes::Nothing,
    [](Options& o, const char* v) { o.count = Count(v); }};
const OptionSpec kChanges{"--changes", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.changes = true; }};
const OptionSpec kFormat{"--format", nullptr, Takes::Value, "senml|prometheus", Completes::Words,
    [](Options& o, const char* v) { o.format = Format(v); }};
const OptionSpec kOutput{"--output", nullptr, Takes::Value, "FILE", Completes::Files,
    [](Options& o, const char* v) {
        o.output = FileName(v, "--output needs a file name (- for standard output)");
    }};
const OptionSpec kRedact{"--redact", nullptr, Takes::Nothing, nullptr, Completes::Nothing,
    [](Options& o, const char*) { o.redact = true; }};
const OptionSpec kListen{"--listen", nullptr, Takes::Value, "ADDRESS:PORT", Completes::Nothing,
    [](Options& o, const char* v) { o.listen = v; }};
const OptionSpec kWebConfig{"--web-config", nullptr, Takes::Value, "FILE", Completes::Files,
    [](Options& o, const char* v) { o.webConfig = FileName(v, "--web-config needs a file name"); }};

// A recording needs its channel before the process runs again under the
// simulation, unless this is that run.
void OpenRecordingChannel(Options& options) {
    if (std::getenv("VORA_RECORD_FD") == nullptr) {
        options.simulation.record = RecordingChannel();
    }
}

const char kUsageHead[] = "Inspect and drive a board through the VORADrv driver module.";

const char kAfterCommands[] =
    " "
    "ITEM is an item id (0x1020201 or 16908801) or a path as \"list\" shows it, "
    "whole (\"Hardware Monitor/Voltage/VCORE\") or by its last parts when they "
    "name one item (\"VCORE\", \"DI0/Level\"); GROUP names a block or group the "
    "same way (\"GPIO\", \"Voltage\").";

const char kUsageTail[] =
    "The simulated board keeps what is written to it from one run to the next "
    "(in $XDG_RUNTIME_DIR, else /tmp/voractl-UID; VORA_SIM_STATE names another "
    "file) until its profile changes or --sim-reset is given. "
    " "
    "Data goes to standard output; the module's own messages go to standard "
    "error as \"module: ...\", voractl's as \"voractl: ...\". "
    " "
    "Exit status: 0 success; 1 the module or the board failed (an item that "
    "cannot be read, a refused or failed write, no board); 2 usage error.";

}  // namespace

// The table itself, however long: a row per command, not a function to split.
const CommandLine& VoractlCommands() {  // NOLINT(readability-function-size)
    static const CommandLine table{
        VORACTL_VERSION,
        kUsageHead,
        {
            {"info", "the module and the board library in use, or items",
             {{&kJson, "the same as a JSON document (items: their records, with \"percent\")"}},
             {"[ITEM...]"}, 0, SIZE_MAX, nullptr, Arguments::Items,
             "Show the module in use (its file and version), the board library it bound (its "
             "file and generation) and how many items each block publishes. With ITEMs, each "
             "as brightnessctl info shows a device: its current value, with its share of the "
             "published range, and the range's ends.",
             nullptr, Info},
            {"caps", "print the capability document",
             {{&kJson, "the same (the document is JSON in any case)"}},
             {}, 0, 0, nullptr, Arguments::None,
             "Print the capability document the module publishes, as indented JSON.",
             nullptr, Caps},
            {"list", "every item with its current value",
             {{&kAll, "every item in a row of its own, GPIO pins too"},
              {&kJson, "a JSON array of records instead; an unreadable value is "
                       "null, with an \"error\" member beside it"}},
             {"[GROUP...]"}, 0, SIZE_MAX, nullptr, Arguments::Groups,
             "Read every item (or those of the GROUPs) and show them grouped by block and "
             "group: id, name, current value with its unit, the published limits, and "
             "\"read-only\" for an item that cannot be set. GPIO pins are one row each, as "
             "gpioinfo shows lines: number, name, direction, level. \"N/A\" stands for a "
             "value that could not be read.",
             nullptr, List},
            {"get", "read items",
             {{&kJson, "print JSON records as \"list --json\" does"},
              {&kType, "the JSON type to read with; needed for an id the capability "
                       "document does not publish"},
              {&kForce, "read a number as text, or text as a number"}},
             {"ITEM..."}, 1, SIZE_MAX, "get needs at least one ITEM", Arguments::Items,
             "Read items and print their values, one per line (with the item's path when "
             "there are several). A GROUP reads every item of it.",
             nullptr, Get},
            {"set", "write items, checked first and read back",
             {{&kJson, "print each item's record as read back, with \"written\" and \"outcome\""},
              {&kType, "the JSON type to write with (with --force)"},
              {&kForce, "send the value unchecked, for a board whose document is wrong"}},
             {"NAME=VALUE...", "ITEM VALUE"}, 1, SIZE_MAX, "set needs NAME=VALUE or ITEM VALUE",
             Arguments::Settable,
             "Write each VALUE to its item, then read it back. Every value is checked "
             "against the capability document before any is written: the item must be "
             "settable, a number within the published min..max and the item's 32-bit "
             "range, a two-state item 0, 1 or one of on/off, high/low, in/out, "
             "true/false, active/inactive. A ranged number may also be given as a "
             "percentage of its range (50%) or relative to its present value (+10%, "
             "-10). A value the board reads back differently fails.",
             nullptr, Set},
            {"watch", "follow readings live (default: every hardware-monitor sensor)",
             {{&kJson, "one JSON document per line and sample: {\"time\", \"items\"}, "
                       "the items as \"list --json\" records with \"changed\""},
              {&kInterval, "seconds between samples (default 2; fractions allowed)"},
              {&kCount, "stop after N samples (default: until interrupted)"},
              {&kChanges, "only what changed, a line each, as gpiomon reports edges: "
                          "\"rising\" and \"falling\" for a level, else \"changed\""}},
             {"[ITEM|GROUP...]"}, 0, SIZE_MAX, nullptr, Arguments::Groups,
             "Read the items again and again: on a terminal the table is redrawn in place, "
             "otherwise each sample is one line with its time. A value that changed since "
             "the sample before is marked with \"*\". Ctrl-C ends the watch.\n\n"
             "ITEM is an id or path; GROUP is a block or group such as \"GPIO\" or "
             "\"Voltage\". Without any, every hardware-monitor sensor.",
             nullptr, Watch},
            {"export", "every readable item for monitoring",
             {{&kFormat, "senml: a SenML pack (RFC 8428), a JSON array of records; "
                         "prometheus: the Prometheus text format, for node_exporter's "
                         "textfile collector (metric names start with voradrv_)", true},
              {&kOutput, "a regular FILE is replaced atomically (a temporary file "
                         "renamed over it, the file's mode kept), so that a reader "
                         "never sees half an export; a symbolic link's target is "
                         "written; a FIFO, character device or socket is written "
                         "to as it is, and /dev/stdout through voractl's own "
                         "standard output (so >> appends); \"-\" and no --output: "
                         "standard output"}},
             {}, 0, 0, nullptr, Arguments::None,
             "Read every item and write the readable ones for a monitoring system.",
             "An item that cannot be read is left out and named on standard error, and "
             "the exit status is 1; the rest is still written.",
             Export},
            {"record", "the board library's answers, as a file that --sim=FILE replays",
             {{&kRedact, "keep only the board's manufacturer, name, revisions, "
                         "versions, platform type, sensor and panel names and its "
                         "readings; replace every other text and every word of the "
                         "management network's values with placeholders of the "
                         "same form"},
              {&kOutput, "where to write it, as export writes (default: standard output)"},
              {&kDuration, "read every item every --interval seconds for SECONDS seconds, so that "
                           "readings that drift and faults that come and go are recorded as they "
                           "happened; Ctrl-C ends it early and keeps what was recorded"},
              {&kInterval, "seconds between readings with --duration (default 2)", false, &kDuration,
               "reads the board again and again"}},
             {}, 0, 0, nullptr, Arguments::None,
             "Record the board library: initialise the module, ask for its capability, "
             "read every item with its own JSON type and shut it down, with a stand-in "
             "in front of the board library that keeps every distinct call and the "
             "library's answers to it, in order, with the time each took. Nothing is "
             "written to the board. The recording is a board: voractl --sim=FILE "
             "replays it, anywhere, as the board answered. A module that does not come "
             "up and items that cannot be read are named, and recorded.",
             nullptr, Record, false, OpenRecordingChannel},
            {"serve", "the board as a Prometheus target",
             {{&kListen, "where to listen (default 127.0.0.1:19719); "
                         "\"[::1]:PORT\" for IPv6, \":PORT\" for every "
                         "address, port 0 for any free one"},
              {&kWebConfig, "TLS and basic auth, in the web configuration format "
                            "of Prometheus's exporters: tls_server_config "
                            "(cert_file, key_file, min_version) and "
                            "basic_auth_users (bcrypt hashes)"},
              {&kInterval, "how often the board page's samples are read "
                           "(default 2; the page keeps the last 300)"}},
             {}, 0, 0, nullptr, Arguments::None,
             "Serve the board's metrics over HTTP for Prometheus, until SIGTERM or "
             "Ctrl-C. The module is loaded once; every scrape of /metrics reads every "
             "item again and answers with the families of \"export --format prometheus\" "
             "and voradrv_up, voradrv_scrape_duration_seconds. OpenMetrics when the "
             "scraper asks for it, gzip when it accepts it. \"/\" is a live page of the "
             "board, drawn from the capability document's hints. Nothing over HTTP "
             "changes the board. A module that does not come up is tried again, and "
             "meanwhile voradrv_up is 0.",
             nullptr, Serve, false},
        },
        kAfterCommands,
        {
            {&kModule, "the module to load (default: the installed one, "
                       "else the one in the build tree)"},
            {&kSim, "run against the board simulator; PROFILE is a board "
                    "profile file (default: the simulated library's board) "
                    "or a recording, which the simulator replays"},
            {&kSimGeneration, "with --sim: simulated board library 4 (default), 3 or eapi"},
            {&kSimReset, "with --sim: start the simulated board again from its profile"},
            {&kTiming, "with --sim=RECORDING: each call takes as long as it took when recorded"},
            {&kTrace, "every call into the board library on standard error"},
            {&kRaw, "show the module's values as the board library gives "
                    "them (tenths of a kelvin on an Embedded API library)"},
            {&kQuiet, "drop the module's own messages"},
            {&kColor, "colour the output: auto (default: on a terminal), "
                      "always or never; NO_COLOR in the environment turns "
                      "colour off whatever --color says"},
            {&kHelp, "show this help; \"voractl help COMMAND\" for a command"},
            {&kVersion, "show voractl's version"},
        },
        kUsageTail,
    };
    return table;
}

}  // namespace voractl
