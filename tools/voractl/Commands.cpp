#include "Commands.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "Format.h"

namespace voractl {

namespace {

using JsonPtr = std::unique_ptr<json_t, decltype(&json_decref)>;

JsonPtr Own(json_t* json) { return JsonPtr(json, &json_decref); }

// One item read from the module.
struct Reading {
    const Item* item;
    JsonPtr value;       // null when the read failed
    uint32_t status;
};

Reading Read(const Context& context, const Item& item) {
    JsonPtr value = Own(EmptyValue(item.type));
    const uint32_t status = context.module.get(item.id, value.get());
    if (status != VORADRV_STATUS_SUCCESS) {
        value.reset();
    }
    return Reading{&item, std::move(value), status};
}

std::string WithUnit(const Reading& reading) {
    if (!reading.value) {
        return "N/A";
    }
    return DisplayValue(reading.value.get(), reading.item->unit);
}

// The display width of UTF-8 text.
size_t Width(const std::string& text) {
    size_t width = 0;
    for (unsigned char c : text) {
        width += (c & 0xC0) != 0x80 ? 1 : 0;
    }
    return width;
}

void PrintTable(std::FILE* out, const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t c = 0; c < row.size(); ++c) {
            widths[c] = std::max(widths[c], Width(row[c]));
        }
    }
    for (const auto& row : rows) {
        std::string line;
        for (size_t c = 0; c < row.size(); ++c) {
            line += row[c];
            if (c + 1 < row.size()) {
                line += std::string(widths[c] - Width(row[c]) + 2, ' ');
            }
        }
        std::fprintf(out, "%s\n", line.c_str());
    }
}

// {"id", "path", "block", "group", "name", "value", "unit", "access"}, with
// "value" null and an "error" beside it when the read failed.
json_t* ReadingJson(const Reading& reading) {
    const Item& item = *reading.item;
    json_t* record = json_pack("{s:I, s:s, s:s, s:s, s:s, s:s, s:s}", "id",
                               static_cast<json_int_t>(item.id), "path", item.path().c_str(),
                               "block", item.block.c_str(), "group", item.group.c_str(), "name",
                               item.name.c_str(), "unit",
                               item.unit == "info" ? "" : item.unit.c_str(), "access",
                               item.access.c_str());
    if (reading.value) {
        json_object_set(record, "value", reading.value.get());
    } else {
        json_object_set_new(record, "value", json_null());
        json_object_set_new(record, "error", json_string(StatusText(reading.status).c_str()));
    }
    return record;
}

void PrintJson(std::FILE* out, json_t* json) {
    json_dumpf(json, out, JSON_INDENT(2));
    std::fputc('\n', out);
}

int ReportFailures(const std::vector<Reading>& readings) {
    int exitStatus = 0;
    for (const Reading& reading : readings) {
        if (!reading.value) {
            std::fprintf(stderr, "voractl: cannot read %s: %s\n", reading.item->path().c_str(),
                         StatusText(reading.status).c_str());
            exitStatus = 1;
        }
    }
    return exitStatus;
}

JsonPtr ParseValue(const Item& item, const std::string& text) {
    char* end = nullptr;
    errno = 0;
    switch (item.type) {
        case JSON_REAL: {
            const double v = std::strtod(text.c_str(), &end);
            if (text.empty() || *end != '\0' || errno != 0) {
                throw ToolError("\"" + text + "\" is not a number", true);
            }
            return Own(json_real(v));
        }
        case JSON_STRING:
            return Own(json_string(text.c_str()));
        default: {
            const long long v = std::strtoll(text.c_str(), &end, 0);
            if (text.empty() || *end != '\0' || errno != 0) {
                throw ToolError("\"" + text + "\" is not an integer", true);
            }
            return Own(json_integer(v));
        }
    }
}

}  // namespace

int Caps(Context& context) {
    PrintJson(context.out, context.document);
    return 0;
}

int List(Context& context) {
    std::vector<Reading> readings;
    for (const Item& item : context.items) {
        readings.push_back(Read(context, item));
    }
    if (context.json) {
        JsonPtr array = Own(json_array());
        for (const Reading& reading : readings) {
            json_array_append_new(array.get(), ReadingJson(reading));
        }
        PrintJson(context.out, array.get());
        return 0;
    }
    std::vector<std::vector<std::string>> rows = {
        {"ID", "BLOCK", "GROUP", "NAME", "VALUE", "ACCESS"}};
    for (const Reading& reading : readings) {
        const Item& item = *reading.item;
        rows.push_back({IdText(item.id), item.block, item.group.empty() ? "-" : item.group,
                        item.name, WithUnit(reading), item.access});
    }
    PrintTable(context.out, rows);
    return 0;
}

int Get(Context& context, const std::vector<std::string>& specs, const char* type) {
    std::vector<Item> wanted;
    for (const std::string& spec : specs) {
        wanted.push_back(FindItem(context.items, spec, type));
    }
    std::vector<Reading> readings;
    for (const Item& item : wanted) {
        readings.push_back(Read(context, item));
    }
    if (context.json) {
        JsonPtr array = Own(json_array());
        for (const Reading& reading : readings) {
            json_array_append_new(array.get(), ReadingJson(reading));
        }
        PrintJson(context.out, readings.size() == 1 ? json_array_get(array.get(), 0)
                                                    : array.get());
        return ReportFailures(readings);
    }
    for (const Reading& reading : readings) {
        if (readings.size() == 1) {
            std::fprintf(context.out, "%s\n", WithUnit(reading).c_str());
        } else {
            std::fprintf(context.out, "%s: %s\n", reading.item->path().c_str(),
                         WithUnit(reading).c_str());
        }
    }
    return ReportFailures(readings);
}

int Set(Context& context, const std::string& spec, const std::string& text, const char* type) {
    const Item item = FindItem(context.items, spec, type);
    JsonPtr value = ParseValue(item, text);
    const uint32_t status = context.module.set(item.id, value.get());
    if (status != VORADRV_STATUS_SUCCESS) {
        std::fprintf(stderr, "voractl: cannot set %s to %s: %s\n", item.path().c_str(),
                     text.c_str(), StatusText(status).c_str());
        return 1;
    }
    return 0;
}

}  // namespace voractl
