#include "HostRules.h"

#include <algorithm>
#include <cstdlib>

#include "fuzz/AddressOracle.h"
#include "voradrv.h"

namespace vtest {

namespace {

constexpr uint32_t kNetworkFirst = 0x10B0001;
constexpr uint32_t kNetworkLast = 0x10B0010;

const char kInfoNotFound[] = "VORADrv Info Get Value: id not found\n";
const char kInfoType[] = "VORADrv Info Get Value: not a json integer or string\n";
const char kInfoString[] = "VORADRV Info Get Value: not a json string\n";
const char kHwmType[] = "VORADRV HWM Get Value: not a json real\n";
const char kGpioType[] = "VORADRV GPIO Get Value: not a json integer\n";
const char kBklType[] = "VORADRV BKL Get Value: not a json integer\n";

}  // namespace

Published PublishedBy(Generation generation, const json_t* document) {
    Published published;
    ForEachElement(document, [&](const json_t* element) {
        published.ids.insert(
            static_cast<uint32_t>(json_integer_value(json_object_get(element, "id"))));
    });
    if (generation == Generation::Vora4) {
        for (uint32_t id = kNetworkFirst; id <= kNetworkLast; ++id) {
            published.ids.insert(id);
        }
    }
    for (uint32_t pin = 0; pin < 256 && published.mapped(0x1040301 + pin); ++pin) {
        published.pins = pin + 1;
    }
    published.brightness = published.mapped(0x1050501);
    return published;
}

// The fourth generation and the EApi library look the id up in the block's
// map first; the third generation checks the value's type first and reads
// by the id's kind, for any item number.
GetExpectation ExpectGet(Generation generation, uint32_t id, const json_t* value,
                         const Published& published) {
    const bool vora3 = generation == Generation::Vora3;
    const bool mapped = published.mapped(id);
    const bool integer = json_is_integer(value);
    const uint32_t kind = id & 0xFFFFFF00u;
    const uint32_t found = mapped ? VORADRV_STATUS_SUCCESS : VORADRV_STATUS_NOT_FOUND;
    switch (id & VORADRV_ID_CLASS_MASK) {
        case VORADRV_CLASS_INFO:
            if (vora3) {
                if (!json_is_string(value)) {
                    return {VORADRV_STATUS_INVALID_VALUE, kInfoString};
                }
                const bool known = id == 0x1010402 || id == 0x1010405 || id == 0x1010201;
                return {known ? VORADRV_STATUS_SUCCESS : VORADRV_STATUS_NOT_FOUND, ""};
            }
            if (!mapped) {
                return {VORADRV_STATUS_NOT_FOUND, kInfoNotFound};
            }
            if (integer || json_is_string(value)) {
                return {};
            }
            return {VORADRV_STATUS_ERROR, kInfoType};
        case VORADRV_CLASS_HWM:
            if (!json_is_real(value) && (vora3 || mapped)) {
                return {VORADRV_STATUS_INVALID_VALUE, kHwmType};
            }
            // Any id of the three groups reads its sensor bit; a sensor the
            // library cannot read answers 0.0 all the same.
            if (vora3) {
                const bool known = kind == 0x1020100 || kind == 0x1020200 || kind == 0x1020300;
                return {known ? VORADRV_STATUS_SUCCESS : VORADRV_STATUS_NOT_FOUND, ""};
            }
            return {found, ""};
        case VORADRV_CLASS_GPIO:
            if (!integer && (vora3 || mapped)) {
                return {VORADRV_STATUS_INVALID_VALUE, kGpioType};
            }
            if (!vora3) {
                return {found, ""};
            }
            if (kind == 0x1040200) {
                return {};  // a bit of the direction mask, for any pin
            }
            if (kind == 0x1040300) {
                // Item number 0 is pin 255; a pin the board lacks cannot be read.
                const unsigned pin = ((id & 0xFFu) - 1u) & 0xFFu;
                return {pin < published.pins ? VORADRV_STATUS_SUCCESS : VORADRV_STATUS_ERROR, ""};
            }
            return {VORADRV_STATUS_NOT_FOUND, ""};
        case VORADRV_CLASS_BKL:
            if (!integer && (vora3 || mapped)) {
                return {VORADRV_STATUS_INVALID_VALUE, kBklType};
            }
            if (!vora3) {
                return {found, ""};
            }
            if (kind != 0x1050500) {
                return {VORADRV_STATUS_NOT_FOUND, ""};
            }
            return {published.brightness ? VORADRV_STATUS_SUCCESS : VORADRV_STATUS_ERROR, ""};
        case VORADRV_CLASS_NETWORK:
            if (generation != Generation::Vora4) {
                break;
            }
            if (!mapped || integer) {
                return {found, ""};
            }
            // Control, status, error code and server type have no text form.
            if (json_is_string(value) && id != 0x10B0001 && id != 0x10B0002 && id != 0x10B000D &&
                id != 0x10B000E) {
                return {};
            }
            return {VORADRV_STATUS_ERROR, ""};
        default:
            break;
    }
    return {VORADRV_STATUS_UNSUPPORTED, ""};
}

std::string SetTypeMessage(uint32_t id, uint32_t status) {
    if (status != VORADRV_STATUS_INVALID_VALUE) {
        return "";
    }
    switch (id & VORADRV_ID_CLASS_MASK) {
        case VORADRV_CLASS_GPIO:
            return kGpioType;
        case VORADRV_CLASS_BKL:
            return kBklType;
        default:
            return "";
    }
}

namespace {

constexpr uint32_t kOnOffKind = 0x1050400;
constexpr uint32_t kBrightnessKind = 0x1050500;
constexpr uint32_t kDirectionKind = 0x1040200;
constexpr uint32_t kLevelKind = 0x1040300;

SetExpectation Refused(uint32_t status) { return {WriteRule::Refused, status, {}}; }
SetExpectation Written(std::vector<unsigned> words = {}) {
    return {WriteRule::Written, 0, std::move(words)};
}

SetExpectation NetworkWrite(uint32_t id, const json_t* value, bool mapped) {
    if (!mapped) {
        return Refused(VORADRV_STATUS_NOT_FOUND);
    }
    if (json_is_integer(value)) {
        return Written({static_cast<unsigned>(json_integer_value(value))});
    }
    if (!json_is_string(value)) {
        return Refused(VORADRV_STATUS_ERROR);
    }
    const std::string text = json_string_value(value);
    std::vector<unsigned> words;
    if (id == 0x10B0003) {
        if (auto name = oracle::HostName(text)) {
            words = *name;
        }
    } else if (id == 0x10B0004) {
        if (auto mac = oracle::Mac(text)) {
            words.assign(mac->begin(), mac->end());
        }
    } else if (id >= 0x10B0005 && id <= 0x10B0008) {
        if (auto address = oracle::Address(text)) {
            words.assign(address->begin(), address->end());
        }
    } else {
        return {WriteRule::NoEffect, 0, {}};  // no text form to write
    }
    return words.empty() ? Refused(VORADRV_STATUS_ERROR) : Written(words);
}

}  // namespace

SetExpectation ExpectSet(Generation generation, uint32_t id, const json_t* value, bool mapped) {
    const uint32_t kind = id & 0xFFFFFF00u;
    const bool integer = json_is_integer(value);
    switch (id & VORADRV_ID_CLASS_MASK) {
        case VORADRV_CLASS_INFO:
        case VORADRV_CLASS_HWM:
            return Refused(VORADRV_STATUS_UNSUPPORTED);
        case VORADRV_CLASS_GPIO:
            if (generation == Generation::Vora3) {
                // The type is checked first, and any id of the two kinds is a pin.
                if (!integer) {
                    return Refused(VORADRV_STATUS_INVALID_VALUE);
                }
                return kind == kDirectionKind || kind == kLevelKind
                           ? Written()
                           : Refused(VORADRV_STATUS_NOT_FOUND);
            }
            if (!mapped) {
                return Refused(VORADRV_STATUS_NOT_FOUND);
            }
            return integer ? Written() : Refused(VORADRV_STATUS_INVALID_VALUE);
        case VORADRV_CLASS_BKL:
            if (generation == Generation::Vora3) {
                if (!integer) {
                    return Refused(VORADRV_STATUS_INVALID_VALUE);
                }
                if (kind == kOnOffKind) {
                    const auto v = static_cast<uint32_t>(json_integer_value(value));
                    return v <= 1 ? Written() : Refused(VORADRV_STATUS_ERROR);
                }
                return kind == kBrightnessKind ? Written() : Refused(VORADRV_STATUS_NOT_FOUND);
            }
            if (!mapped) {
                return Refused(VORADRV_STATUS_NOT_FOUND);
            }
            if (!integer) {
                return Refused(VORADRV_STATUS_INVALID_VALUE);
            }
            if (generation == Generation::Vora4 && kind == kOnOffKind) {
                return {WriteRule::WrittenIfChanged, 0, {}};
            }
            return Written();
        case VORADRV_CLASS_NETWORK:
            if (generation == Generation::Vora4) {
                return NetworkWrite(id, value, mapped);
            }
            return Refused(VORADRV_STATUS_UNSUPPORTED);
        default:
            return Refused(VORADRV_STATUS_UNSUPPORTED);
    }
}

std::vector<std::string> WriteCalls(const std::vector<std::string>& lines) {
    std::vector<std::string> writes;
    for (const std::string& line : lines) {
        const std::string function = line.substr(0, line.find(' '));
        if (function.find("Set") != std::string::npos || function == "VoraIOWriteEx" ||
            function == "VoraVCScreenOn" || function == "VoraVCScreenOff") {
            writes.push_back(line);
        }
    }
    return writes;
}

bool WroteWords(const std::string& line, const std::vector<unsigned>& wanted) {
    const size_t at = line.find(" words=");
    if (line.rfind("VoraBoardSetValue ", 0) != 0 || at == std::string::npos) {
        return false;
    }
    std::vector<unsigned> words;
    for (const char* p = line.c_str() + at + 7; *p != '\0';) {
        char* next = nullptr;
        words.push_back(static_cast<unsigned>(std::strtoul(p, &next, 16)));
        if (next == p) {
            return false;
        }
        p = *next == ',' ? next + 1 : next;
    }
    return words.size() >= wanted.size() &&
           std::equal(wanted.begin(), wanted.end(), words.begin()) &&
           std::all_of(words.begin() + static_cast<long>(wanted.size()), words.end(),
                       [](unsigned w) { return w == 0; });
}

}  // namespace vtest
