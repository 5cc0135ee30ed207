#include "SenML.h"

#include <set>

#include "Format.h"

namespace voractl {

namespace {

// The text read for a platform-information item, or "".
std::string BoardText(const std::vector<Reading>& readings, const std::string& name) {
    for (const Reading& reading : readings) {
        if (reading.value && json_is_string(reading.value.get()) &&
            reading.item->in(Block::Platform) && reading.item->name == name) {
            return json_string_value(reading.value.get());
        }
    }
    return "";
}

std::string BaseName(const std::vector<Reading>& readings) {
    std::string base = "voradrv:";
    for (const char* name : {"Board name", "Board serial number"}) {
        const std::string text = BoardText(readings, name);
        if (!text.empty()) {
            base += SenmlName(text) + ":";
        }
    }
    base.back() = '/';
    return base;
}

// Sets the record's value and unit. Returns false for a value SenML cannot
// carry.
bool SetValue(json_t* record, const Item& item, const json_t* value) {
    if (json_is_string(value)) {
        json_object_set_new(record, "vs", json_string(json_string_value(value)));
        return true;
    }
    if (!json_is_number(value)) {
        return false;
    }
    const double number = json_number_value(value);
    const UnitKind& kind = item.kind();
    if (const TwoStateKind* states = kind.twoState()) {
        // A level or switch is true or false; a direction is its word.
        json_object_set_new(record, states->boolean ? "vb" : "vs",
                            states->boolean ? json_boolean(number != 0.0)
                                            : json_string(states->shown(number != 0.0 ? 1 : 0)));
    } else if (kind.exported.senml != nullptr) {
        json_object_set_new(record, "u", json_string(kind.exported.senml));
        json_object_set_new(record, "v", json_real(number * kind.exported.scale));
    } else {
        json_object_set_new(record, "v", json_deep_copy(value));
    }
    return true;
}

}  // namespace

std::string SenmlName(const std::string& text) {
    std::string name;
    for (unsigned char c : text) {
        const bool allowed = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') || c == '-' || c == ':' || c == '.' ||
                             c == '/' || c == '_';
        // A multi-byte character becomes one "_".
        if (allowed && !(c == '/' && !name.empty() && name.back() == '_')) {
            name += static_cast<char>(c);
        } else if (c == '/') {
            name.back() = '/';  // "Running time (hours)/" gives "Running_time_hours/"
        } else if ((c & 0xC0) != 0x80 && (name.empty() || name.back() != '_')) {
            name += '_';
        }
    }
    if (name.size() > 1 && name.back() == '_') {
        name.pop_back();
    }
    return name;
}

json_t* SenmlPack(const std::vector<Reading>& readings, double time) {
    json_t* pack = json_array();
    std::set<std::string> names;
    for (const Reading& reading : readings) {
        if (!reading.value) {
            continue;
        }
        const Item& item = *reading.item;
        json_t* record = json_object();
        if (json_array_size(pack) == 0) {
            json_object_set_new(record, "bn", json_string(BaseName(readings).c_str()));
            json_object_set_new(record, "bt", json_real(time));
        }
        std::string name = SenmlName(item.path());
        if (!names.insert(name).second) {
            name += "_" + IdText(item.id);  // two items of one path stay apart
            names.insert(name);
        }
        json_object_set_new(record, "n", json_string(name.c_str()));
        if (SetValue(record, item, reading.value.get())) {
            json_array_append_new(pack, record);  // the pack takes the record
        } else {
            json_decref(record);
        }
    }
    return pack;
}

}  // namespace voractl
