#include "GetRules.h"

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

void Collect(const json_t* node, std::set<uint32_t>& ids) {
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(node, "e"), i, element) {
        ids.insert(static_cast<uint32_t>(json_integer_value(json_object_get(element, "id"))));
    }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(node), key, member) {
        if (json_is_object(member)) {
            Collect(member, ids);
        }
    }
}

GetExpectation Info(Generation generation, uint32_t id, const json_t* value,
                    const Published& published) {
    if (generation == Generation::Vora3) {
        if (!json_is_string(value)) {
            return {VORADRV_STATUS_INVALID_VALUE, kInfoString};
        }
        const bool known = id == 0x1010402 || id == 0x1010405 || id == 0x1010201;
        return {known ? VORADRV_STATUS_SUCCESS : VORADRV_STATUS_NOT_FOUND, ""};
    }
    if (!published.mapped(id)) {
        return {VORADRV_STATUS_NOT_FOUND, kInfoNotFound};
    }
    if (json_is_integer(value) || json_is_string(value)) {
        return {VORADRV_STATUS_SUCCESS, ""};
    }
    return {VORADRV_STATUS_ERROR, kInfoType};
}

GetExpectation Hwm(Generation generation, uint32_t id, const json_t* value,
                   const Published& published) {
    if (generation == Generation::Vora3) {
        // Any id of the three groups reads its sensor bit; a sensor the library
        // cannot read answers 0.0 all the same.
        if (!json_is_real(value)) {
            return {VORADRV_STATUS_INVALID_VALUE, kHwmType};
        }
        const uint32_t group = id & 0xFFFFFF00u;
        const bool known = group == 0x1020100 || group == 0x1020200 || group == 0x1020300;
        return {known ? VORADRV_STATUS_SUCCESS : VORADRV_STATUS_NOT_FOUND, ""};
    }
    if (!published.mapped(id)) {
        return {VORADRV_STATUS_NOT_FOUND, ""};
    }
    return json_is_real(value) ? GetExpectation{}
                               : GetExpectation{VORADRV_STATUS_INVALID_VALUE, kHwmType};
}

GetExpectation Gpio(Generation generation, uint32_t id, const json_t* value,
                    const Published& published) {
    const uint32_t kind = id & 0xFFFFFF00u;
    if (generation == Generation::Vora3) {
        if (!json_is_integer(value)) {
            return {VORADRV_STATUS_INVALID_VALUE, kGpioType};
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
    }
    if (!published.mapped(id)) {
        return {VORADRV_STATUS_NOT_FOUND, ""};
    }
    return json_is_integer(value) ? GetExpectation{}
                                  : GetExpectation{VORADRV_STATUS_INVALID_VALUE, kGpioType};
}

GetExpectation Backlight(Generation generation, uint32_t id, const json_t* value,
                         const Published& published) {
    if (generation == Generation::Vora3) {
        if (!json_is_integer(value)) {
            return {VORADRV_STATUS_INVALID_VALUE, kBklType};
        }
        if ((id & 0xFFFFFF00u) != 0x1050500) {
            return {VORADRV_STATUS_NOT_FOUND, ""};
        }
        return {published.brightness ? VORADRV_STATUS_SUCCESS : VORADRV_STATUS_ERROR, ""};
    }
    if (!published.mapped(id)) {
        return {VORADRV_STATUS_NOT_FOUND, ""};
    }
    return json_is_integer(value) ? GetExpectation{}
                                  : GetExpectation{VORADRV_STATUS_INVALID_VALUE, kBklType};
}

GetExpectation Network(uint32_t id, const json_t* value, const Published& published) {
    if (!published.mapped(id)) {
        return {VORADRV_STATUS_NOT_FOUND, ""};
    }
    if (json_is_integer(value)) {
        return {};
    }
    // Control, status, error code and server type have no text form.
    const bool number = id == 0x10B0001 || id == 0x10B0002 || id == 0x10B000D || id == 0x10B000E;
    if (json_is_string(value) && !number) {
        return {};
    }
    return {VORADRV_STATUS_ERROR, ""};
}

}  // namespace

Published PublishedBy(Generation generation, const json_t* document) {
    Published published;
    Collect(document, published.ids);
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

GetExpectation ExpectGet(Generation generation, uint32_t id, const json_t* value,
                         const Published& published) {
    switch (id & VORADRV_ID_CLASS_MASK) {
        case VORADRV_CLASS_INFO:
            return Info(generation, id, value, published);
        case VORADRV_CLASS_HWM:
            return Hwm(generation, id, value, published);
        case VORADRV_CLASS_GPIO:
            return Gpio(generation, id, value, published);
        case VORADRV_CLASS_BKL:
            return Backlight(generation, id, value, published);
        case VORADRV_CLASS_NETWORK:
            if (generation == Generation::Vora4) {
                return Network(id, value, published);
            }
            break;
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

}  // namespace vtest
