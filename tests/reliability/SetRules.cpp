#include "SetRules.h"

#include <cstdlib>
#include <cstring>

#include "fuzz/AddressOracle.h"
#include "voradrv.h"

namespace vtest {

namespace {

constexpr uint32_t kOnOffKind = 0x1050400;
constexpr uint32_t kBrightnessKind = 0x1050500;
constexpr uint32_t kDirectionKind = 0x1040200;
constexpr uint32_t kLevelKind = 0x1040300;

SetExpectation Refused(uint32_t status) { return {WriteRule::Refused, status, {}}; }
SetExpectation Written(std::vector<unsigned> words = {}) {
    return {WriteRule::Written, 0, std::move(words)};
}

SetExpectation Network(uint32_t id, const json_t* value, bool mapped) {
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
                return Network(id, value, mapped);
            }
            return Refused(VORADRV_STATUS_UNSUPPORTED);
        default:
            return Refused(VORADRV_STATUS_UNSUPPORTED);
    }
}

bool IsWriteCall(const std::string& line) {
    const std::string function = line.substr(0, line.find(' '));
    return function.find("Set") != std::string::npos || function == "VoraIOWriteEx" ||
           function == "VoraVCScreenOn" || function == "VoraVCScreenOff";
}

std::vector<unsigned> LoggedWords(const std::string& line) {
    std::vector<unsigned> words;
    const size_t at = line.find(" words=");
    if (line.rfind("VoraBoardSetValue ", 0) != 0 || at == std::string::npos) {
        return words;
    }
    const char* p = line.c_str() + at + std::strlen(" words=");
    while (*p != '\0') {
        char* next = nullptr;
        words.push_back(static_cast<unsigned>(std::strtoul(p, &next, 16)));
        if (next == p) {
            break;
        }
        p = *next == ',' ? next + 1 : next;
    }
    return words;
}

bool SameWords(const std::vector<unsigned>& logged, const std::vector<unsigned>& wanted) {
    if (logged.size() < wanted.size()) {
        return false;
    }
    for (size_t i = 0; i < logged.size(); ++i) {
        if (logged[i] != (i < wanted.size() ? wanted[i] : 0u)) {
            return false;
        }
    }
    return true;
}

}  // namespace vtest
