#include "Format.h"

#include <time.h>

#include <cstdio>

#include "Kinds.h"
#include "voradrv.h"

namespace voractl {

std::string StatusText(uint32_t status) {
    const char* name;
    switch (status) {
        case VORADRV_STATUS_SUCCESS: name = "success"; break;
        case VORADRV_STATUS_UNSUPPORTED: name = "unsupported"; break;
        case VORADRV_STATUS_NOT_FOUND: name = "not found"; break;
        case VORADRV_STATUS_READ_ERROR: name = "read error"; break;
        case VORADRV_STATUS_MORE_DATA: name = "more data"; break;
        case VORADRV_STATUS_INVALID_VALUE: name = "invalid value"; break;
        case VORADRV_STATUS_ERROR: name = "error"; break;
        case VORADRV_STATUS_ALREADY_INITIALIZED: name = "already initialized"; break;
        case VORADRV_STATUS_SYMBOL_MISSING: name = "symbol missing"; break;
        default: name = "library status"; break;
    }
    char text[64];
    std::snprintf(text, sizeof text, "%s (0x%08X)", name, status);
    return text;
}

std::string ValueText(const json_t* value) {
    char text[64];
    switch (json_typeof(value)) {
        case JSON_INTEGER:
            std::snprintf(text, sizeof text, "%lld", static_cast<long long>(json_integer_value(value)));
            return text;
        case JSON_REAL:
            std::snprintf(text, sizeof text, "%.10g", json_real_value(value));
            return text;
        case JSON_STRING:
            return json_string_value(value);
        case JSON_TRUE:
            return "true";
        case JSON_FALSE:
            return "false";
        default:
            return "N/A";
    }
}

std::string UnitText(const Item& item) {
    const char* symbol = item.kind().shown.symbol;
    return symbol != nullptr ? symbol : item.unit;
}

std::string DisplayValue(const json_t* value, const Item& item) {
    const UnitKind& kind = item.kind();
    std::string number = ValueText(value);
    if (json_is_number(value)) {
        const double v = json_number_value(value);
        const TwoStateKind* states = kind.twoState();
        if (states != nullptr && (v == 0.0 || v == 1.0)) {
            return states->shown(v == 1.0 ? 1 : 0);
        }
        if (kind.shown.decimals >= 0) {
            char text[64];
            std::snprintf(text, sizeof text, kind.shown.sign ? "%+.*f" : "%.*f", kind.shown.decimals, v);
            number = text;
        }
    }
    const std::string symbol = UnitText(item);
    return symbol.empty() ? number : number + " " + symbol;
}

std::string IdText(uint32_t id) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", id);
    return text;
}

double UnixTime() {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec / 1000000) / 1000.0;
}

}  // namespace voractl
