#include "InfoItems.h"

#include <cstdio>
#include <cstring>

#include "module/Status.h"
#include "module/StringUtil.h"

namespace voradrv::info {

const char* const kValueLabels[7] = {"Spec version",
                                     "Boot up times",
                                     "Running time (hours)",
                                     "Microsoft Plug-and-Play ID",
                                     "Platform revision",
                                     "EC Last Shutdown Status",
                                     "EC Last Shutdown Event"};
const char* const kStringLabels[9] = {"Board manufacturer", "Board name",        "Board revision",
                                      "Board serial number", "BIOS revision",    "Hardware revision",
                                      "Platform type",      "Firmware Name",     "BIOS name"};
const char* const kVersionLabels[3] = {"Driver version", "Library version", "Firmware version"};

namespace {
// Formatted values fit in 32 bytes ("255.255.65535" at most).
constexpr unsigned long kTextSize = 32;
}  // namespace

std::string PairText(uint32_t value) {
    char text[kTextSize];
    StringSprintf(text, sizeof text, "%u,%u", value >> 24, (value >> 16) & 0xFF);
    return text;
}

std::string PnpText(uint32_t value) {
    // The library's byte order of the compressed vendor code.
    const unsigned char first = static_cast<unsigned char>(((value >> 14) & 0x3F) + 0x40);
    const unsigned char second =
        static_cast<unsigned char>(((((value >> 12) & 0x3) << 3) | ((value >> 25) & 0x7)) + 0x40);
    const unsigned char third = static_cast<unsigned char>(((value >> 20) & 0x1F) + 0x40);
    char text[kTextSize];
    StringSprintf(text, sizeof text, "%c%c%c, 0x%X", first, second, third, value & 0xFFF);
    return text;
}

std::string VersionText(uint32_t value) {
    char text[kTextSize];
    StringSprintf(text, sizeof text, "%u.%u.%u", value >> 24, (value >> 16) & 0xFF,
                  value & 0xFFFF);
    return text;
}

json_t* TextEntry(const char* label, const char* text, uint32_t id) {
    return json_pack("{s:s, s:s, s:s, s:i}", "n", label, "sv", text, "asm", "r", "id",
                     static_cast<int>(id));
}

json_t* IntegerEntry(const char* label, uint32_t value, uint32_t id) {
    json_t* entry = json_pack("{s:s, s:i, s:s, s:i}", "n", label, "v", static_cast<int>(value),
                              "asm", "r", "id", static_cast<int>(id));
    // The unit follows the label's text, not the position.
    if (std::strcmp(label, "Boot up times") == 0) {
        json_object_set_new(entry, "u", json_string("times"));
    } else if (std::strcmp(label, "Running time (hours)") == 0) {
        json_object_set_new(entry, "u", json_string("hour"));
    }
    return entry;
}

bool AppendEntry(json_t* array, json_t* entry, const char* builder) {
    if (entry == nullptr || !json_is_object(entry) || json_object_size(entry) == 0) {
        std::printf("VORADrv Info %s: json_pack array failed", builder);
        json_decref(entry);
        return false;
    }
    if (json_array_append_new(array, entry) != 0) {
        std::printf("VORADrv Info %s: unable to append new value", builder);
        return false;
    }
    return true;
}

int BuildValues(json_t* array, std::map<uint32_t, uint32_t>& map, GetValueFn getValue,
                unsigned count) {
    int result = 1;
    for (unsigned p = 0; p < count; ++p) {
        unsigned int value = 0;
        if (getValue(p, &value) != 0) {
            continue;
        }
        const uint32_t id = kValueGroup + 1 + p;
        map[id] = p;
        json_t* entry;
        if (p == 0 || p == 4) {
            entry = TextEntry(kValueLabels[p], PairText(value).c_str(), id);
        } else if (p == 3) {
            entry = TextEntry(kValueLabels[p], PnpText(value).c_str(), id);
        } else {
            entry = IntegerEntry(kValueLabels[p], value, id);
        }
        if (!AppendEntry(array, entry, "getValueInfo")) {
            return -1;
        }
        result = 0;
    }
    return result;
}

int BuildVersions(json_t* array, std::map<uint32_t, uint32_t>& map, GetValueFn getValue) {
    int result = 1;
    for (unsigned p = 0; p < 3; ++p) {
        unsigned int value = 0;
        if (getValue(kVersionLibraryBase + p, &value) != 0) {
            continue;
        }
        const uint32_t id = kVersionGroup + 1 + p;
        map[id] = kVersionLibraryBase + p;
        if (!AppendEntry(array, TextEntry(kVersionLabels[p], VersionText(value).c_str(), id),
                         "getVersion")) {
            return -1;
        }
        result = 0;
    }
    return result;
}

int BuildStrings(json_t* array, std::map<uint32_t, uint32_t>& map, GetStringFn getString,
                 unsigned count, const StringRules& rules) {
    const unsigned int size = rules.bufferSize < kStringSize ? rules.bufferSize : kStringSize;
    int found = 0;
    for (unsigned p = 0; p < count; ++p) {
        // The library is told `size` bytes; the text stays terminated within
        // them whatever it writes.
        char text[kStringSize + 1] = {};
        unsigned int length = size;
        const uint32_t status = getString(p, text, &length);
        text[size] = '\0';
        if (status != 0) {
            if (status == STATUS_MORE_DATA && rules.countCutStrings) {
                ++found;
            }
            continue;
        }
        if (text[0] == '\0' || (rules.rejectUnknown && std::strcmp(text, "Unknown") == 0)) {
            continue;
        }
        const uint32_t id = kStringGroup + 1 + p;
        map[id] = p;
        if (rules.trimLineFeed) {
            TrimLineFeed(text, length, size);
        }
        if (!AppendEntry(array, TextEntry(kStringLabels[p], text, id), "getStringInfo")) {
            return -1;
        }
        ++found;
    }
    return found == 0 ? 1 : 0;
}

void TrimLineFeed(char* buffer, unsigned int length, unsigned int size) {
    if (length >= 1 && length <= size && buffer[length - 1] == '\n') {
        buffer[length - 1] = '\0';
    }
}

namespace {

// Sets a JSON string to a text the library gave. A text that is not valid
// UTF-8 cannot be carried by a JSON string: jansson refuses it and the value
// keeps what it held, but the library read succeeded and so does this.
uint32_t SetString(json_t* value, const char* text) {
    json_string_set(value, text);
    return STATUS_SUCCESS;
}

}  // namespace

uint32_t ReadItem(uint32_t id, uint32_t libraryId, json_t* value, GetValueFn getValue,
                  GetStringFn getString, bool trimLineFeed) {
    if (json_is_integer(value)) {
        unsigned int v = 0;
        const uint32_t status = getValue(libraryId, &v);
        if (status != 0) {
            return status;
        }
        json_integer_set(value, static_cast<json_int_t>(v));
        return STATUS_SUCCESS;
    }
    if (!json_is_string(value)) {
        std::puts("VORADrv Info Get Value: not a json integer or string");
        return STATUS_ERROR;
    }
    switch (id & 0xFFFFFF00u) {
        case kValueGroup:
        case kVersionGroup: {
            unsigned int v = 0;
            const uint32_t status = getValue(libraryId, &v);
            if (status != 0) {
                return status;
            }
            const std::string text = (id & 0xFFFFFF00u) == kVersionGroup ? VersionText(v)
                                     : id == kPnpId                      ? PnpText(v)
                                                                         : PairText(v);
            return SetString(value, text.c_str());
        }
        case kStringGroup: {
            // Zeroed and terminated whatever the library writes.
            char buffer[kStringSize + 1] = {};
            unsigned int length = kStringSize;
            const uint32_t status = getString(libraryId, buffer, &length);
            if (status != 0) {
                return status;
            }
            if (trimLineFeed) {
                TrimLineFeed(buffer, length, kStringSize);
            }
            return SetString(value, buffer);
        }
        default:
            return STATUS_NOT_FOUND;
    }
}

}  // namespace voradrv::info
