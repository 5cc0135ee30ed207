#include "Commands.h"

#include <cmath>
#include <map>
#include <optional>

#include "BoardLibraries.h"
#include "Format.h"
#include "Printable.h"
#include "Reading.h"
#include "Table.h"
#include "TextChecks.h"
#include "ToolError.h"
#include "Width.h"
#include "json/JsonPtr.h"

using voradrv::host::GenerationText;
using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

// "libVORA-4.00 (fourth generation), /usr/lib/libVORA-4.00.so".
std::string LibraryText(const Session& session) {
    const auto& library = session.library();
    if (!library) {
        return "none found";
    }
    return library->name + " (" + GenerationText(library->generation) + "), " + Printable(library->path);
}

// The recording the simulated board library replays, when it does: null
// for none.
JsonPtr Replayed(const Session& session) {
    const auto& library = session.library();
    if (!library || library->replay.empty()) {
        return Own(nullptr);
    }
    return Own(json_loads(library->replay.c_str(), 0, nullptr));
}

// "libVORA-4.00 (fourth generation), /usr/lib/libVORA-4.00.so, recorded
// 2026-11-24T10:17:04Z, redacted".
std::string ReplayText(const json_t* replay) {
    const auto text = [&](const char* key) {
        const char* value = json_string_value(json_object_get(replay, key));
        return Printable(value != nullptr ? value : "");
    };
    const char* generation = json_string_value(json_object_get(replay, "generation"));
    std::string line = text("name") + " (" + GenerationText(generation != nullptr ? generation : "") + ")";
    line += json_string_length(json_object_get(replay, "path")) > 0 ? ", " + text("path") : "";
    line += ", recorded " + text("recorded");
    return line + (json_is_true(json_object_get(replay, "redacted")) ? ", redacted" : ", not redacted");
}

// The items of the selectors; every item without any.
std::vector<Item> Chosen(Context& context) {
    const std::vector<std::string>& selectors = context.options.arguments;
    return selectors.empty() ? context.session.items()
                             : SelectAll(context.session.items(), selectors);
}

// The items `get` is asked for, in the order asked for and each once, with
// the JSON type --type gives them.
std::vector<Item> Requested(Context& context) {
    const Options& options = context.options;
    std::vector<Item> items;
    for (const std::string& selector : options.arguments) {
        const bool typed = options.type.has_value();
        for (const Item& item : SelectValue(context.session.items(), selector, true, typed).items) {
            bool seen = false;
            for (const Item& other : items) {
                seen = seen || (other.id == item.id && other.path() == item.path());
            }
            if (!seen) {
                items.push_back(item);
            }
        }
    }
    for (Item& item : items) {
        const json_type type = options.type.value_or(item.type);
        // A number read as text, or text as a number, is another item's
        // answer more often than this one's.
        if (type != item.type && (type == JSON_STRING || item.type == JSON_STRING) &&
            !item.block.empty() && !options.force) {
            throw ToolError(Printable(item.path()) + " is published as " +
                            (item.type == JSON_STRING ? "text" : "a number") + "; --type " +
                            TypeName(type) + " reads it only with --force");
        }
        item.type = type;
    }
    return items;
}

// The items `info` is asked for, a pin as its level, each once.
std::vector<Item> Asked(Context& context) {
    std::vector<Item> items;
    for (const std::string& selector : context.options.arguments) {
        for (const Item& item : SelectValue(context.session.items(), selector, true).items) {
            bool seen = false;
            for (const Item& other : items) {
                seen = seen || (other.id == item.id && other.path() == item.path());
            }
            if (!seen) {
                items.push_back(item);
            }
        }
    }
    return items;
}

// Where a ranged reading lies in its range, in whole percent, as
// brightnessctl shows brightness; none for any other.
std::optional<long> Percent(const Reading& reading) {
    const Item& item = *reading.item;
    if (!reading.value || !json_is_number(reading.value.get()) || !item.ranged() || item.twoState()) {
        return std::nullopt;
    }
    double low = *item.minimum;
    double high = *item.maximum;
    const Conversion& conversion = item.kind().conversion;
    if (reading.bare && reading.libraryUnit && conversion.toLibrary != nullptr) {
        low = conversion.toLibrary(low);
        high = conversion.toLibrary(high);
    }
    if (high <= low) {
        return std::nullopt;
    }
    return std::lround((json_number_value(reading.value.get()) - low) / (high - low) * 100.0);
}

// A management network setting as `ipmitool lan print` shows one:
// "Modified sub mask              : 255.255.255.0 (/24)".
void NetworkLine(Context& context, const Reading& reading) {
    const std::string name = Printable(reading.item->name);
    const std::string value = ShownValue(reading);
    const std::string note = reading.value ? PrefixNote(*reading.item, value) : "";
    std::fprintf(context.out, "%s%s : %s%s\n", name.c_str(),
                 std::string(30 - std::min<size_t>(30, DisplayWidth(name)), ' ').c_str(), value.c_str(),
                 note.c_str());
}

// Each item as brightnessctl info shows a device, a network setting as
// `ipmitool lan print` shows one:
//   Item 'Backlight/LVDS/Brightness' (0x1050501):
//   	Current Brightness: 80 (80%)
//   	Max Brightness: 100
//   	Min Brightness: 0
int ItemInfo(Context& context) {
    const std::vector<Item> items = Asked(context);
    const std::vector<Reading> readings = context.session.readAll(items);
    JsonPtr records = Own(RecordsJson(readings));
    for (size_t i = 0; i < readings.size(); ++i) {
        const Reading& reading = readings[i];
        const Item& item = *reading.item;
        const std::string name = Printable(item.name);
        const std::optional<long> percent = Percent(reading);
        if (percent) {
            json_object_set_new(json_array_get(records.get(), i), "percent", json_integer(*percent));
        }
        if (context.options.json) {
            continue;
        }
        if (item.in(Block::Network)) {
            NetworkLine(context, reading);
            continue;
        }
        std::fprintf(context.out, "Item '%s' (%s):\n\tCurrent %s: %s", Printable(item.path()).c_str(),
                     IdText(item.id).c_str(), name.c_str(), ShownValue(reading).c_str());
        std::fprintf(context.out, percent ? " (%ld%%)\n" : "\n", percent.value_or(0));
        if (item.ranged() && !item.twoState() && item.type != JSON_STRING) {
            const std::string high = LimitText(item, *item.maximum, reading.bare, reading.libraryUnit);
            const std::string low = LimitText(item, *item.minimum, reading.bare, reading.libraryUnit);
            std::fprintf(context.out, "\tMax %s: %s\n\tMin %s: %s\n", name.c_str(), high.c_str(), name.c_str(),
                         low.c_str());
        }
    }
    if (context.options.json) {
        PrintJson(context.out, readings.size() == 1 ? json_array_get(records.get(), 0) : records.get());
    }
    return ReportFailures(readings);
}

void PrintWrapped(std::FILE* out, const std::string& label, const std::string& text, size_t width) {
    for (const std::string& line : Wrapped(label, text, width)) {
        std::fprintf(out, "%s\n", line.c_str());
    }
}

// The module, the board library and the items of each block.
int ModuleInfo(Context& context) {
    Session& session = context.session;
    std::map<std::string, int> counts;
    std::vector<std::string> blocks;
    for (const Item& item : session.items()) {
        if (counts[item.block]++ == 0) {
            blocks.push_back(item.block);
        }
    }
    const std::string version = session.modulePath() == DefaultModulePath() ? VORACTL_VERSION : "unknown";
    const auto& library = session.library();
    const JsonPtr replay = Replayed(session);
    if (context.options.json) {
        JsonPtr items = Own(json_object());
        for (const std::string& block : blocks) {
            json_object_set_new(items.get(), block.c_str(), json_integer(counts[block]));
        }
        JsonPtr info = Own(json_pack(
            "{s:{s:s, s:s}, s:o, s:O, s:O}", "module", "path", session.modulePath().c_str(), "version",
            version.c_str(), "board_library",
            library ? json_pack("{s:s, s:s, s:s}", "path", library->path.c_str(), "name",
                                library->name.c_str(), "generation", library->generation.c_str())
                    : json_null(),
            "replay", replay != nullptr ? replay.get() : json_null(), "items", items.get()));
        PrintJson(context.out, info.get());
        return 0;
    }
    const size_t width = OutputWidth(context.out);
    PrintWrapped(context.out, "Module         ",
                 Printable(session.modulePath()) + " (version " + version + ")", width);
    PrintWrapped(context.out, "Board library  ", LibraryText(session), width);
    if (replay != nullptr) {
        PrintWrapped(context.out, "Replaying      ", ReplayText(replay.get()), width);
    }
    for (const std::string& block : blocks) {
        std::fprintf(context.out, "  %-22s %d item%s\n", Printable(block).c_str(), counts[block],
                     counts[block] == 1 ? "" : "s");
    }
    return 0;
}

}  // namespace

int Info(Context& context) {
    return context.options.arguments.empty() ? ModuleInfo(context) : ItemInfo(context);
}

int Caps(Context& context) {
    PrintJson(context.out, context.session.document());
    return 0;
}

int List(Context& context) {
    const std::vector<Item> items = Chosen(context);
    const std::vector<Reading> readings = context.session.readAll(items);
    if (context.options.json) {
        PrintJson(context.out, Own(RecordsJson(readings)).get());
        return ReportFailures(readings);
    }
    TableColumns columns;
    columns.limits = true;
    columns.pins = !context.options.all;
    columns.width = OutputWidth(context.out);
    for (const std::string& line : Wrapped("Board library: ", LibraryText(context.session), columns.width)) {
        std::fprintf(context.out, "%s\n", context.style.dim(line).c_str());
    }
    for (const std::string& line : ItemTable(TableRows(readings), columns, context.style)) {
        std::fprintf(context.out, "%s\n", line.c_str());
    }
    return ReportFailures(readings);
}

int Get(Context& context) {
    const Options& options = context.options;
    const std::vector<Item> items = Requested(context);
    const std::vector<Reading> readings = context.session.readAll(items);
    if (options.json) {
        JsonPtr array = Own(RecordsJson(readings));
        PrintJson(context.out, readings.size() == 1 ? json_array_get(array.get(), 0) : array.get());
        return ReportFailures(readings);
    }
    for (const Reading& reading : readings) {
        // An alarm is marked as `sensors` marks it; a bare value (--raw)
        // stays a number alone, for scripts.
        const std::string value =
            ShownValue(reading) + (reading.alarm && !reading.bare ? "  ALARM" : "");
        if (readings.size() == 1) {
            std::fprintf(context.out, "%s\n", value.c_str());
        } else {
            std::fprintf(context.out, "%s: %s\n", Printable(reading.item->path()).c_str(), value.c_str());
        }
    }
    return ReportFailures(readings);
}

}  // namespace voractl
