#include "FuncGPIO.h"

#include <cstdio>
#include <memory>

#include "function/JsonHolder.h"
#include "module/Status.h"

namespace {

constexpr uint32_t kUnknownCap = 0xFFFFFFFF;

// {"n", "bv", "max", "min", "id", "u", "asm", "ui"}.
json_t* PinItem(const char* label, json_int_t value, uint32_t max, uint32_t min, uint32_t id,
                const char* unit, const char* access, const char* ui) {
    return json_pack("{s:s, s:o, s:i, s:i, s:i, s:s, s:s, s:s}", "n", label, "bv",
                     json_integer(value), "max", static_cast<int>(max), "min",
                     static_cast<int>(min), "id", static_cast<int>(id), "u", unit, "asm", access,
                     "ui", ui);
}

}  // namespace

FuncGPIO::FuncGPIO()
    : GroupFamily(0x1040000, "GPIO",
                  "VORADrv GPIO Get Cap: unable to update an empty object with an empty object") {}

void FuncGPIO::createIPSOGPIOPackage() {}

bool FuncGPIO::publishPin(const char* name, unsigned pin, json_int_t direction, json_int_t level,
                          const CapQuery& inputCap, const CapQuery& outputCap) {
    // Both owned here until the block's list and the group hold them.
    auto record = std::make_unique<GPIOPIN>(name);
    voradrv::JsonHolder array(json_array());

    // A pin that can be only one of input and output has a fixed direction.
    uint32_t in = inputCap();
    uint32_t out = outputCap();
    const char* directionAccess = in == kUnknownCap || out == kUnknownCap ? "N/A"
                                  : in != out                            ? "r"
                                                                         : "rw";
    // "max" 1 when the pin can be an input, "min" 0 when it can be an output.
    const uint32_t max = inputCap();
    const uint32_t min = outputCap() ^ 1u;
    if (json_array_append_new(array.get(), PinItem("Dir", direction, max, min, kDirectionBase + pin,
                                             "I/O", directionAccess,
                                             getUIProperty(directionAccess))) != 0) {
        std::puts("VORADrv GPIO : cap dir unable to append new value");
    }

    in = inputCap();
    out = outputCap();
    const char* levelAccess = in == kUnknownCap || out == kUnknownCap ? "N/A"
                              : out == 0 && in == 1                  ? "r"
                                                                     : "rw";
    if (json_array_append_new(array.get(), PinItem("Level", level, 1, 0, kLevelBase + pin, "H/L",
                                             levelAccess, getUIProperty(levelAccess))) != 0) {
        std::puts("VORADrv GPIO : cap level unable to append new value");
    }

    if (!json_is_array(array.get()) || json_array_size(array.get()) == 0) {
        std::puts("VORADrv GPIO: cap json_pack array failed");
        return false;
    }
    record->group = IPSO_Capability_Packager(array.release(), name, "info", kBaseTime,
                                             kLayoutVersion, static_cast<int>(kGroupBase + pin));
    if (record->group == nullptr || !json_is_object(record->group) ||
        json_object_size(record->group) == 0) {
        std::puts("VORADrv GPIO: ipso cap json_pack array failed");
    }
    items.push_back(record.get());
    record.release();
    return true;
}

bool FuncGPIO::publishMappedPin(const char* name, unsigned pin, json_int_t direction,
                                json_int_t level, const CapQuery& inputCap,
                                const CapQuery& outputCap) {
    idtoLibIDMap[kDirectionBase + pin] = pin;
    idtoLibIDMap[kLevelBase + pin] = pin;
    return publishPin(name, pin, direction, level, inputCap, outputCap);
}

uint32_t FuncGPIO::getMappedPin(uint32_t id, json_t* value, PinRead direction, PinRead level) {
    auto pin = idtoLibIDMap.find(id);
    if (pin == idtoLibIDMap.end()) {
        return STATUS_NOT_FOUND;
    }
    if (!isInteger(value)) {
        return STATUS_INVALID_VALUE;
    }
    const uint32_t kind = id & 0xFFFFFF00u;
    if (kind != kDirectionKind && kind != kLevelKind) {
        return STATUS_NOT_FOUND;
    }
    unsigned int v = 0;
    const uint32_t status = (kind == kDirectionKind ? direction : level)(pin->second, 1, &v);
    if (status != STATUS_SUCCESS) {
        return STATUS_ERROR;
    }
    json_integer_set(value, static_cast<json_int_t>(v));
    return STATUS_SUCCESS;
}

uint32_t FuncGPIO::setMappedPin(uint32_t id, json_t* value, PinWrite direction, PinWrite level) {
    auto pin = idtoLibIDMap.find(id);
    if (pin == idtoLibIDMap.end()) {
        return STATUS_NOT_FOUND;
    }
    if (!isInteger(value)) {
        return STATUS_INVALID_VALUE;
    }
    // Passed on unchecked: the library decides what it accepts.
    const auto v = static_cast<uint32_t>(json_integer_value(value));
    switch (id & 0xFFFFFF00u) {
        case kDirectionKind:
            return direction(pin->second, 1, v);
        case kLevelKind:
            return level(pin->second, 1, v);
        default:
            return STATUS_NOT_FOUND;
    }
}

bool FuncGPIO::isInteger(json_t* value) {
    if (json_is_integer(value)) {
        return true;
    }
    std::puts("VORADRV GPIO Get Value: not a json integer");
    return false;
}
