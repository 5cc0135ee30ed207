#include "Reading.h"

#include <cstdio>

#include "Format.h"

namespace voractl {

Reading Read(const Module& module, const Item& item) {
    Reading reading;
    reading.item = &item;
    reading.value = Own(EmptyValue(item.type));
    reading.status = module.get(item.id, reading.value.get());
    if (reading.status != VORADRV_STATUS_SUCCESS) {
        reading.value.reset();
    }
    return reading;
}

std::vector<Reading> ReadAll(const Module& module, const std::vector<Item>& items) {
    std::vector<Reading> readings;
    readings.reserve(items.size());
    for (const Item& item : items) {
        readings.push_back(Read(module, item));
    }
    return readings;
}

std::string ShownValue(const Reading& reading) {
    if (!reading.value) {
        return "N/A";
    }
    return DisplayValue(reading.value.get(), reading.item->unit);
}

json_t* ReadingJson(const Reading& reading) {
    const Item& item = *reading.item;
    json_t* record = json_pack("{s:I, s:s, s:s, s:s, s:s, s:s, s:s}", "id",
                               static_cast<json_int_t>(item.id), "path", item.path().c_str(),
                               "block", item.block.c_str(), "group", item.group.c_str(), "name",
                               item.name.c_str(), "unit",
                               item.unit == "info" ? "" : item.unit.c_str(), "access",
                               item.access.c_str());
    if (record == nullptr) {
        throw ToolError("cannot build the JSON record of " + item.path());
    }
    if (reading.value) {
        json_object_set(record, "value", reading.value.get());
    } else {
        json_object_set_new(record, "value", json_null());
        json_object_set_new(record, "error", json_string(StatusText(reading.status).c_str()));
    }
    return record;
}

void PrintJson(std::FILE* out, const json_t* json) {
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

}  // namespace voractl
