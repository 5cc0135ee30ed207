#include "Reading.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "Format.h"
#include "Printable.h"
#include "Table.h"
#include "ToolError.h"

namespace voractl {

std::string ShownValue(const Reading& reading) {
    if (!reading.value) {
        return "N/A";
    }
    return Printable(reading.bare ? ValueText(reading.value.get())
                                  : DisplayValue(reading.value.get(), *reading.item));
}

std::string FailureText(const Reading& reading) {
    return reading.unanswered ? "the board library did not answer in time" : StatusText(reading.status);
}

json_t* ReadingJson(const Reading& reading) {
    const Item& item = *reading.item;
    json_t* record = json_pack("{s:I, s:s, s:s, s:s, s:s, s:s, s:s}", "id",
                               static_cast<json_int_t>(item.id), "path", item.path().c_str(),
                               "block", item.block.c_str(), "group", item.group.c_str(), "name",
                               item.name.c_str(), "unit", item.is(Quantity::None) ? "" : item.unit.c_str(), "access",
                               item.access.c_str());
    if (record == nullptr) {
        throw ToolError("cannot build the JSON record of " + Printable(item.path()));
    }
    if (reading.value) {
        json_object_set(record, "value", reading.value.get());
    } else {
        json_object_set_new(record, "value", json_null());
        json_object_set_new(record, "error", json_string(FailureText(reading).c_str()));
    }
    if (reading.raw) {
        json_object_set(record, "raw", reading.raw.get());
    }
    if (item.minimum && item.maximum) {
        json_object_set_new(record, "min", json_real(*item.minimum));
        json_object_set_new(record, "max", json_real(*item.maximum));
    }
    if (item.ranged() && reading.value) {
        json_object_set_new(record, "alarm", json_boolean(reading.alarm));
    }
    if (!item.sharing.empty()) {
        json_t* names = json_array();
        for (const std::string& name : item.sharing) {
            json_array_append_new(names, json_string(name.c_str()));
        }
        json_object_set_new(record, "shares_id_with", names);
    }
    return record;
}

std::string JsonText(const json_t* json) {
    char* text = json_dumps(json, JSON_COMPACT | JSON_REAL_PRECISION(15));
    if (text == nullptr) {
        throw ToolError("cannot write JSON");
    }
    std::string out = text;
    std::free(text);
    return out;
}

void PrintJson(std::FILE* out, const json_t* json) {
    json_dumpf(json, out, JSON_INDENT(2) | JSON_REAL_PRECISION(15));
    std::fputc('\n', out);
}

int ReportFailures(const std::vector<Reading>& readings, std::set<std::string>* said) {
    std::vector<const Reading*> failed;
    for (const Reading& reading : readings) {
        if (!reading.value && (said == nullptr || said->insert(reading.item->path()).second)) {
            failed.push_back(&reading);
        }
    }
    const auto unanswered = std::count_if(failed.begin(), failed.end(),
                                          [](const Reading* reading) { return reading->unanswered; });
    bool told = false;
    for (const Reading* reading : failed) {
        if (reading->unanswered && std::exchange(told, true)) {
            continue;
        }
        const std::string more = reading->unanswered && unanswered > 1
                                     ? ", nor the " + std::to_string(unanswered - 1) + " after it"
                                     : "";
        std::fprintf(stderr, "voractl: cannot read %s: %s%s\n", Printable(reading->item->path()).c_str(),
                     FailureText(*reading).c_str(), more.c_str());
    }
    return std::any_of(readings.begin(), readings.end(),
                       [](const Reading& reading) { return !reading.value; }) ? 1 : 0;
}

json_t* RecordsJson(const std::vector<Reading>& readings) {
    json_t* array = json_array();
    for (const Reading& reading : readings) {
        json_array_append_new(array, ReadingJson(reading));  // the array takes the record
    }
    return array;
}

json_t* ShownRecordsJson(const std::vector<Reading>& readings) {
    json_t* records = RecordsJson(readings);
    for (size_t i = 0; i < readings.size(); ++i) {
        json_t* record = json_array_get(records, i);
        const Item& item = *readings[i].item;
        json_object_set_new(record, "text", json_string(ShownValue(readings[i]).c_str()));
        const std::string limits = LimitsText(item);
        if (!limits.empty()) {
            json_object_set_new(record, "limits", json_string(limits.c_str()));
        }
        const UnitKind& kind = item.kind();
        const std::string symbol = UnitText(item);
        if (kind.twoState() != nullptr) {
            json_object_set_new(record, "two_state", json_true());
            continue;
        }
        if (!symbol.empty()) {
            json_object_set_new(record, "symbol", json_string(symbol.c_str()));
        }
        if (kind.shown.decimals >= 0) {
            json_object_set_new(record, "decimals", json_integer(kind.shown.decimals));
        }
    }
    return records;
}

}  // namespace voractl
