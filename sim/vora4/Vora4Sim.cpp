// Simulated fourth-generation board library "libVORA-4.00".
//
// Ids: board values 0..6, versions 0x10000..0x10002, sensors 0x20000 +
// index (temperature, tenths of a kelvin), 0x21000 (voltage, mV), 0x22000
// (fan, RPM), 0x23000 (current, mA), 0x24000 (case switch), network values
// 0x12000..0x1200F as word arrays. Texts: board strings 0..8, customer
// strings 16..18 with their labels at id | 0x90000000, sensor names at the
// sensor's id, pin names at 0x40000000 | pin, panel names at 0x60000000 |
// panel. GPIO capability masks at 0x10000 + bank (item 0 inputs, 1 outputs).
#include <cstdio>
#include <string>

#include "binding/Vora4Library.h"
#include "sim/core/Devices.h"
#include "sim/core/Exports.h"
#include "sim/core/Sim.h"
#include "sim/core/Units.h"

using namespace vorasim;

namespace {

// Words of each writable network value; every other network value is
// read-only.
size_t WritableWords(unsigned int id) {
    switch (id) {
        case 0x12000: return 1;   // network control
        case 0x12002: return 32;  // host name
        case 0x12003: return 6;   // MAC address
        case 0x12004: case 0x12005: case 0x12006: case 0x12007: return 4;  // modified settings
        default: return 0;
    }
}

bool SensorId(unsigned int id, SensorKind& kind, unsigned& index) {
    const unsigned base = id & 0xFFFFF000u;
    if (base < 0x20000 || base > 0x24000) {
        return false;
    }
    kind = static_cast<SensorKind>((base - 0x20000) >> 12);
    index = id & 0xFFFu;
    return true;
}

// The text behind a string id, or null when the board has none.
const std::string* Text(Board& board, unsigned int id) {
    if (id < 9) {
        return board.text(kStringKeys[id]);
    }
    if (id >= 16 && id <= 18) {
        return id - 16 < board.customer.size() ? &board.customer[id - 16].value : nullptr;
    }
    if (id >= 0x90000010 && id <= 0x90000012) {
        const unsigned k = id - 0x90000010;
        return k < board.customer.size() ? &board.customer[k].label : nullptr;
    }
    SensorKind kind;
    unsigned index;
    if (SensorId(id, kind, index)) {
        const Sensor* sensor = board.sensor(kind, index);
        return sensor != nullptr && sensor->name ? &*sensor->name : nullptr;
    }
    if ((id & 0xFFFFFF00u) == 0x40000000u) {
        const Pin* pin = board.pin(id & 0xFF);
        return pin != nullptr && pin->name ? &*pin->name : nullptr;
    }
    if ((id & 0xFFFFFF00u) == 0x60000000u) {
        const Panel* panel = board.panel(id & 0xFF);
        return panel != nullptr && panel->name ? &*panel->name : nullptr;
    }
    return nullptr;
}

}  // namespace

namespace model {

uint32_t VoraLibInitialize(void) {
    Call call("VoraLibInitialize");
    return Initialise(call, kOk, kUnsupported);
}

uint32_t VoraLibUninitialize(void) {
    Call call("VoraLibUninitialize");
    return call.result(kOk);
}

uint32_t VoraBoardGetStringA(unsigned int id, char* buffer, unsigned int* length) {
    Call call("VoraBoardGetStringA", id);
    return BoardText(call, Text(call.board(), id), buffer, length);
}

uint32_t VoraBoardGetValue(unsigned int id, unsigned int* value) {
    Call call("VoraBoardGetValue", id);
    if (call.failsNow()) {
        return call.status();
    }
    if (value == nullptr) {
        return call.result(kInvalidParameter);
    }
    Board& board = call.board();
    if (const uint32_t* known = BoardValue(board, id, 7)) {
        call.out(value, *known);
        return call.result(kOk);
    }
    SensorKind kind;
    unsigned index;
    if (SensorId(id, kind, index)) {
        const Sensor* sensor = board.sensor(kind, index);
        if (sensor == nullptr) {
            return call.result(kUnsupported);
        }
        call.out(value, RawReading(kind, *sensor, call.sim().sensorValue(*sensor)));
        return call.result(kOk);
    }
    auto words = board.network.find(id);
    if (words != board.network.end()) {
        for (size_t i = 0; i < words->second.size(); ++i) {
            call.out(value + i, words->second[i]);
        }
        return call.result(kOk);
    }
    return call.result(kUnsupported);
}

uint32_t VoraBoardSetValue(unsigned int id, unsigned int* value) {
    Call call("VoraBoardSetValue", id);
    const size_t count = WritableWords(id);
    if (value != nullptr) {
        std::string words;
        for (size_t i = 0; i < (count == 0 ? 1 : count); ++i) {
            char word[16];
            std::snprintf(word, sizeof word, "%s0x%X", i == 0 ? "" : ",", value[i]);
            words += word;
        }
        call.noteText("words", words);
    }
    if (call.failsNow()) {
        return call.status();
    }
    if (value == nullptr) {
        return call.result(kInvalidParameter);
    }
    if (count == 0) {
        return call.result(kUnsupported);
    }
    // Octets of addresses must fit a byte; the control value runs 0..18.
    const bool octets = id != 0x12000 && id != 0x12002;
    for (size_t i = 0; i < count; ++i) {
        if ((octets && value[i] > 0xFF) || (id == 0x12000 && value[i] > 18)) {
            return call.result(kInvalidParameter);
        }
    }
    call.board().network[id].assign(value, value + count);
    call.changed();
    return call.result(kOk);
}

uint32_t VoraGPIOGetCaps(unsigned int id, unsigned int item, unsigned int* value) {
    Call call("VoraGPIOGetCaps", id);
    call.note("item", item);
    if (call.failsNow()) {
        return call.status();
    }
    if (id < 0x10000 || id > 0x10003 || item > 1 || value == nullptr) {
        return call.result(kUnsupported);
    }
    const unsigned bank = id - 0x10000;
    uint32_t mask = 0;
    for (const Pin& pin : call.board().pins) {
        if (pin.pin / 32 == bank && (item == 0 ? pin.input : pin.output)) {
            mask |= 1u << (pin.pin % 32);
        }
    }
    call.out(value, mask);
    return call.result(kOk);
}

uint32_t VoraGPIOGetDirection(unsigned int id, unsigned int mask, unsigned int* direction) {
    Call call("VoraGPIOGetDirection", id);
    return GetPinDirection(call, id, mask, direction);
}

uint32_t VoraGPIOSetDirection(unsigned int id, unsigned int mask, unsigned int direction) {
    Call call("VoraGPIOSetDirection", id);
    return SetPinDirection(call, id, mask, direction);
}

uint32_t VoraGPIOGetLevel(unsigned int id, unsigned int mask, unsigned int* level) {
    Call call("VoraGPIOGetLevel", id);
    return GetPinLevel(call, id, mask, level);
}

uint32_t VoraGPIOSetLevel(unsigned int id, unsigned int mask, unsigned int level) {
    Call call("VoraGPIOSetLevel", id);
    return SetPinLevel(call, id, mask, level);
}

uint32_t VoraVgaGetCaps(unsigned int id, unsigned int item, unsigned int* value) {
    Call call("VoraVgaGetCaps", id);
    call.note("item", item);
    if (call.failsNow()) {
        return call.status();
    }
    const Panel* panel = call.board().panel(id);
    if (panel == nullptr || !panel->brightness || value == nullptr ||
        (item != 0x10000 && item != 0x10001)) {
        return call.result(kUnsupported);
    }
    call.out(value, item == 0x10000 ? panel->maximum : panel->minimum);
    return call.result(kOk);
}

}  // namespace model

namespace {

// Get and set of one optional panel control, for the four display calls
// that share this shape.
uint32_t GetControl(const char* function, unsigned int id, unsigned int* out,
                    std::optional<uint32_t> Panel::*control) {
    Call call(function, id);
    if (call.failsNow()) {
        return call.status();
    }
    const Panel* panel = call.board().panel(id);
    if (panel == nullptr || !(panel->*control) || out == nullptr) {
        return call.result(kUnsupported);
    }
    call.out(out, *(panel->*control));
    return call.result(kOk);
}

uint32_t SetControl(const char* function, unsigned int id, unsigned int value,
                    std::optional<uint32_t> Panel::*control, uint32_t minimum,
                    uint32_t maximum) {
    Call call(function, id);
    call.note("value", value);
    if (call.failsNow()) {
        return call.status();
    }
    Panel* panel = call.board().panel(id);
    if (panel == nullptr || !(panel->*control)) {
        return call.result(kUnsupported);
    }
    if (value < minimum || value > maximum) {
        return call.result(kInvalidParameter);
    }
    panel->*control = value;
    call.changed();
    return call.result(kOk);
}

}  // namespace

namespace model {

uint32_t VoraVgaGetFrequency(unsigned int id, unsigned int* frequency) {
    return GetControl("VoraVgaGetFrequency", id, frequency, &Panel::frequency);
}

uint32_t VoraVgaSetFrequency(unsigned int id, unsigned int frequency) {
    return SetControl("VoraVgaSetFrequency", id, frequency, &Panel::frequency, 1, 65535);
}

uint32_t VoraVgaGetPolarity(unsigned int id, unsigned int* polarity) {
    return GetControl("VoraVgaGetPolarity", id, polarity, &Panel::polarity);
}

uint32_t VoraVgaSetPolarity(unsigned int id, unsigned int polarity) {
    return SetControl("VoraVgaSetPolarity", id, polarity, &Panel::polarity, 0, 1);
}

uint32_t VoraVgaGetBacklightEnable(unsigned int id, unsigned int* enable) {
    Call call("VoraVgaGetBacklightEnable", id);
    return GetPanelEnable(call, id, enable, 1, 0);
}

uint32_t VoraVgaSetBacklightEnable(unsigned int id, unsigned int enable) {
    Call call("VoraVgaSetBacklightEnable", id);
    return SetPanelEnable(call, id, enable, 1, 0);
}

uint32_t VoraVgaGetBacklightBrightness(unsigned int id, unsigned int* brightness) {
    Call call("VoraVgaGetBacklightBrightness", id);
    return GetPanelBrightness(call, id, brightness);
}

uint32_t VoraVgaSetBacklightBrightness(unsigned int id, unsigned int brightness) {
    Call call("VoraVgaSetBacklightBrightness", id);
    return SetPanelBrightness(call, id, brightness);
}

}  // namespace model

VORA4_LIBRARY(VORASIM_EXPORT, VORASIM_EXPORT)
