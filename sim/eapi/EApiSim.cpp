// Simulated PICMG Embedded API library "libEApi".
//
// Board strings 0..6 and values 0..4 and 0x10000..0x10002 as the
// fourth-generation library numbers them; sensors at 0x20000 + index
// (temperature, tenths of a kelvin), 0x21004 + 4 * index (voltage, mV: four
// blocks of four slots), 0x22000 + index (fan, RPM), 0x23000 + index
// (current, mA). EApiHWMGetCaps answers 1 for a sensor the board has and
// fails, leaving its output alone, for any other id. GPIO ids are pin
// numbers; the backlight is on when its enable value is 0 and off at
// 0xFFFFFFFF, the Embedded API's convention.
#include <string>

#include "binding/EApiLibrary.h"
#include "sim/core/Devices.h"
#include "sim/core/Exports.h"
#include "sim/core/Sim.h"
#include "sim/core/Units.h"

using namespace vorasim;

namespace {

constexpr uint32_t kBacklightOn = 0;
constexpr uint32_t kBacklightOff = 0xFFFFFFFF;

bool SensorId(unsigned int id, SensorKind& kind, unsigned& index) {
    if (id >= 0x21004 && id < 0x21004 + 4 * 16 && (id - 0x21004) % 4 == 0) {
        kind = kVoltage;
        index = (id - 0x21004) / 4;
        return true;
    }
    const unsigned base = id & 0xFFFFF000u;
    if (base != 0x20000 && base != 0x22000 && base != 0x23000) {
        return false;
    }
    kind = base == 0x20000 ? kTemperature : base == 0x22000 ? kFan : kCurrent;
    index = id & 0xFFFu;
    return true;
}

const Sensor* SensorOfId(const Board& board, unsigned int id, SensorKind& kind) {
    unsigned index = 0;
    return SensorId(id, kind, index) ? board.sensor(kind, index) : nullptr;
}

}  // namespace

namespace model {

uint32_t EApiLibInitialize(void) {
    Call call("EApiLibInitialize");
    return Initialise(call, kOk, kUnsupported);
}

uint32_t EApiLibUnInitialize(void) {
    Call call("EApiLibUnInitialize");
    return call.result(kOk);
}

uint32_t EApiBoardGetStringA(unsigned int id, char* buffer, unsigned int* length) {
    Call call("EApiBoardGetStringA", id);
    return BoardText(call, id < 7 ? call.board().text(kStringKeys[id]) : nullptr, buffer, length);
}

uint32_t EApiBoardGetValue(unsigned int id, unsigned int* value) {
    Call call("EApiBoardGetValue", id);
    if (call.failsNow()) {
        return call.status();
    }
    if (value == nullptr) {
        return call.result(kInvalidParameter);
    }
    const Board& board = call.board();
    if (const uint32_t* known = BoardValue(board, id, 5)) {
        call.out(value, *known);
        return call.result(kOk);
    }
    SensorKind kind;
    const Sensor* sensor = SensorOfId(board, id, kind);
    if (sensor == nullptr) {
        return call.result(kUnsupported);
    }
    call.out(value, RawReading(kind, *sensor, call.sim().sensorValue(*sensor)));
    return call.result(kOk);
}

uint32_t EApiHWMGetCaps(unsigned int id, unsigned int* capability) {
    Call call("EApiHWMGetCaps", id);
    if (call.failsNow()) {
        return call.status();
    }
    SensorKind kind;
    if (SensorOfId(call.board(), id, kind) == nullptr || capability == nullptr) {
        return call.result(kUnsupported);
    }
    call.out(capability, 1u);
    return call.result(kOk);
}

uint32_t EApiGPIOGetDirectionCaps(unsigned int id, unsigned int* inputs, unsigned int* outputs) {
    Call call("EApiGPIOGetDirectionCaps", id);
    if (call.failsNow()) {
        return call.status();
    }
    const Pin* pin = call.board().pin(id);
    if (pin == nullptr) {
        return call.result(kUnsupported);
    }
    call.out(inputs, pin->input ? 1u : 0u);
    call.out(outputs, pin->output ? 1u : 0u);
    return call.result(kOk);
}

uint32_t EApiGPIOGetDirection(unsigned int id, unsigned int mask, unsigned int* direction) {
    Call call("EApiGPIOGetDirection", id);
    return GetPinDirection(call, id, mask, direction);
}

uint32_t EApiGPIOGetLevel(unsigned int id, unsigned int mask, unsigned int* level) {
    Call call("EApiGPIOGetLevel", id);
    return GetPinLevel(call, id, mask, level);
}

uint32_t EApiGPIOSetDirection(unsigned int id, unsigned int mask, unsigned int direction) {
    Call call("EApiGPIOSetDirection", id);
    return SetPinDirection(call, id, mask, direction);
}

uint32_t EApiGPIOSetLevel(unsigned int id, unsigned int mask, unsigned int level) {
    Call call("EApiGPIOSetLevel", id);
    return SetPinLevel(call, id, mask, level);
}

uint32_t EApiVgaGetBacklightBrightness(unsigned int id, unsigned int* brightness) {
    Call call("EApiVgaGetBacklightBrightness", id);
    return GetPanelBrightness(call, id, brightness);
}

uint32_t EApiVgaSetBacklightBrightness(unsigned int id, unsigned int brightness) {
    Call call("EApiVgaSetBacklightBrightness", id);
    return SetPanelBrightness(call, id, brightness);
}

uint32_t EApiVgaGetBacklightEnable(unsigned int id, unsigned int* enable) {
    Call call("EApiVgaGetBacklightEnable", id);
    return GetPanelEnable(call, id, enable, kBacklightOn, kBacklightOff);
}

uint32_t EApiVgaSetBacklightEnable(unsigned int id, unsigned int enable) {
    Call call("EApiVgaSetBacklightEnable", id);
    return SetPanelEnable(call, id, enable, kBacklightOn, kBacklightOff);
}

}  // namespace model

EAPI_LIBRARY(VORASIM_EXPORT, VORASIM_EXPORT)
