#include "Commands.h"

#include <cerrno>
#include <cstdlib>

#include "Format.h"
#include "Reading.h"
#include "Table.h"

namespace voractl {

namespace {

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

JsonPtr RecordArray(const std::vector<Reading>& readings) {
    JsonPtr array = Own(json_array());
    for (const Reading& reading : readings) {
        json_array_append_new(array.get(), ReadingJson(reading));  // the array takes the record
    }
    return array;
}

}  // namespace

int Caps(Context& context) {
    PrintJson(context.out, context.document);
    return 0;
}

int List(Context& context) {
    const std::vector<Reading> readings = ReadAll(context.module, context.items);
    if (context.json) {
        PrintJson(context.out, RecordArray(readings).get());
        return 0;
    }
    std::vector<TableRow> rows;
    for (const Reading& reading : readings) {
        rows.push_back(TableRow{reading.item, ShownValue(reading), !reading.value, false});
    }
    for (const std::string& line : ItemTable(rows, TableColumns{}, context.style)) {
        std::fprintf(context.out, "%s\n", line.c_str());
    }
    return 0;
}

int Get(Context& context, const std::vector<std::string>& selectors, const char* type) {
    std::vector<Item> wanted;
    for (const std::string& selector : selectors) {
        wanted.push_back(FindItem(context.items, selector, type));
    }
    const std::vector<Reading> readings = ReadAll(context.module, wanted);
    if (context.json) {
        JsonPtr array = RecordArray(readings);
        PrintJson(context.out, readings.size() == 1 ? json_array_get(array.get(), 0)
                                                    : array.get());
        return ReportFailures(readings);
    }
    for (const Reading& reading : readings) {
        const std::string value = ShownValue(reading);
        if (readings.size() == 1) {
            std::fprintf(context.out, "%s\n", value.c_str());
        } else {
            std::fprintf(context.out, "%s: %s\n", reading.item->path().c_str(), value.c_str());
        }
    }
    return ReportFailures(readings);
}

int Set(Context& context, const std::string& selector, const std::string& text, const char* type) {
    const Item item = FindItem(context.items, selector, type);
    JsonPtr value = ParseValue(item, text);
    const uint32_t status = context.module.set(item.id, value.get());
    if (status != VORADRV_STATUS_SUCCESS) {
        if (context.json) {
            Reading failed;
            failed.item = &item;
            failed.status = status;
            PrintJson(context.out, Own(ReadingJson(failed)).get());
        }
        std::fprintf(stderr, "voractl: cannot set %s to %s: %s\n", item.path().c_str(),
                     text.c_str(), StatusText(status).c_str());
        return 1;
    }
    if (context.json) {
        // The write took; a value that cannot be read back shows as null
        // with its error.
        PrintJson(context.out, Own(ReadingJson(Read(context.module, item))).get());
    }
    return 0;
}

}  // namespace voractl
