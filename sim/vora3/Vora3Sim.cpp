// Simulated third-generation board library "libVORA-3.02".
//
// Success is 1, failure 0. Sensors are addressed by one-bit masks (bit b is
// the sensor with index b); voltages and temperatures are floats, fan speeds
// 16-bit numbers. GPIO pins are counted from 0; mask selector 2 gives the
// pins whose direction can change, 32 the present directions (bit set =
// input). The display calls address the board's first panel.
#include <cmath>
#include <string>
#include <type_traits>

#include "binding/Vora3Library.h"
#include "sim/core/Devices.h"
#include "sim/core/Exports.h"
#include "sim/core/Sim.h"
#include "sim/core/Units.h"

using namespace vorasim;

namespace {

uint32_t Text(Call& call, const std::string* text, char* buffer, unsigned int* length) {
    if (buffer != nullptr && length != nullptr) {
        call.note("size", *length);
    }
    if (call.failsNow()) {
        return call.status();
    }
    if (text == nullptr || length == nullptr) {
        return call.result(kV3Failed);
    }
    if (buffer == nullptr) {
        // The length query: how many bytes the text needs, terminator included.
        call.out(length, static_cast<unsigned int>(text->size() + 1));
        return call.result(kV3Ok);
    }
    return call.text(*text, buffer, length, kV3Ok, kV3Failed, true);
}

// Support mask of a sensor kind: bit b for the sensor with index b.
uint32_t SupportMask(const Board& board, SensorKind kind, unsigned bits) {
    uint32_t mask = 0;
    for (const Sensor& s : board.sensors[kind]) {
        if (s.index < bits) {
            mask |= 1u << s.index;
        }
    }
    return mask;
}

// The sensor a one-bit mask names, or null.
const Sensor* SensorOfMask(const Board& board, SensorKind kind, uint32_t id) {
    if (id == 0 || (id & (id - 1)) != 0) {
        return nullptr;
    }
    unsigned bit = 0;
    while ((id >> bit) != 1) {
        ++bit;
    }
    return board.sensor(kind, bit);
}

// The board's only screen: its first panel.
Panel* Screen(Board& board) { return board.panels.empty() ? nullptr : &board.panels.front(); }

// Pins 0..count-1; the board's highest pin number decides the count.
unsigned PinCount(const Board& board) {
    unsigned count = 0;
    for (const Pin& pin : board.pins) {
        count = pin.pin + 1 > count ? pin.pin + 1 : count;
    }
    return count;
}

// Turns the screen on or off.
uint32_t SetScreen(Call& call, bool on) {
    if (call.failsNow()) {
        return call.status();
    }
    Panel* screen = Screen(call.board());
    if (screen == nullptr) {
        return call.result(kV3Failed);
    }
    screen->enable = on;
    call.changed();
    return call.result(kV3Ok);
}

// A sensor reading: the support mask of its kind (`bits` wide) first, then,
// for a one-bit `id`, the sensor's value; `id` 0 asks for the mask alone.
template <typename Value, typename Mask>
uint32_t ReadSensor(Call& call, SensorKind kind, unsigned bits, uint32_t id, Value* value,
                    Mask* mask) {
    if (call.failsNow()) {
        return call.status();
    }
    call.out(mask, static_cast<Mask>(SupportMask(call.board(), kind, bits)));
    if (id == 0) {
        return call.result(kV3Ok);
    }
    const Sensor* sensor = SensorOfMask(call.board(), kind, id);
    if (sensor == nullptr) {
        return call.result(kV3Failed);
    }
    if constexpr (std::is_floating_point_v<Value>) {
        call.out(value, static_cast<Value>(call.sim().sensorValue(*sensor)));
    } else {
        const double rpm = sensor->raw ? *sensor->raw : call.sim().sensorValue(*sensor);
        call.out(value, static_cast<Value>(std::lround(rpm)));
    }
    return call.result(kV3Ok);
}

}  // namespace

namespace model {

uint32_t VoraDllInit(void) {
    Call call("VoraDllInit");
    return Initialise(call, kV3Ok, kV3Failed);
}

uint32_t VoraDllUnInit(void) {
    Call call("VoraDllUnInit");
    return call.result(kV3Ok);
}

uint32_t VoraCoreGetPlatformName(char* buffer, unsigned int* length) {
    Call call("VoraCoreGetPlatformName");
    call.note("buffer", buffer != nullptr);
    return Text(call, call.board().text("name"), buffer, length);
}

uint32_t VoraCoreGetBIOSVersion(char* buffer, unsigned int* length) {
    Call call("VoraCoreGetBIOSVersion");
    call.note("buffer", buffer != nullptr);
    return Text(call, call.board().text("bios_revision"), buffer, length);
}

void VoraDllGetVersion(unsigned int* major, unsigned int* minor) {
    Call call("VoraDllGetVersion");
    const uint32_t* version = call.board().value("driver_version");
    if (call.failsNow() || version == nullptr) {
        return;
    }
    call.out(major, *version >> 24);
    call.out(minor, (*version >> 16) & 0xFF);
}

uint32_t VoraHWMGetVoltage(unsigned int id, float* value, unsigned int* mask) {
    Call call("VoraHWMGetVoltage", id);
    return ReadSensor(call, kVoltage, 32, id, value, mask);
}

uint32_t VoraHWMGetFanSpeed(unsigned short id, unsigned short* value, unsigned short* mask) {
    Call call("VoraHWMGetFanSpeed", id);
    return ReadSensor(call, kFan, 16, id, value, mask);
}

uint32_t VoraHWMGetTemperature(unsigned short id, float* value, unsigned short* mask) {
    Call call("VoraHWMGetTemperature", id);
    return ReadSensor(call, kTemperature, 16, id, value, mask);
}

uint32_t VoraIOQueryMask(unsigned int selector, unsigned int* mask) {
    Call call("VoraIOQueryMask", selector);
    if (call.failsNow()) {
        return call.status();
    }
    if ((selector != 2 && selector != 32) || mask == nullptr) {
        return call.result(kV3Failed);
    }
    uint32_t bits = 0;
    for (const Pin& pin : call.board().pins) {
        const bool set = selector == 2 ? pin.input && pin.output : pin.direction == 1;
        if (set && pin.pin < 32) {
            bits |= 1u << pin.pin;
        }
    }
    call.out(mask, bits);
    return call.result(kV3Ok);
}

uint32_t VoraIOCountEx(unsigned int* first, unsigned int* second) {
    Call call("VoraIOCountEx");
    if (call.failsNow()) {
        return call.status();
    }
    if (first == nullptr || second == nullptr) {
        return call.result(kV3Failed);
    }
    // Input-only pins first, every other pin second.
    unsigned inputs = 0;
    for (const Pin& pin : call.board().pins) {
        inputs += pin.input && !pin.output ? 1 : 0;
    }
    const unsigned count = PinCount(call.board());
    call.out(first, inputs);
    call.out(second, count - inputs);
    return call.result(kV3Ok);
}

uint32_t VoraIOReadEx(unsigned char pin, int* level) {
    Call call("VoraIOReadEx", pin);
    if (call.failsNow()) {
        return call.status();
    }
    const Pin* p = call.board().pin(pin);
    if (p == nullptr || level == nullptr) {
        return call.result(kV3Failed);
    }
    call.out(level, static_cast<int>(p->level));
    return call.result(kV3Ok);
}

uint32_t VoraIOWriteEx(unsigned char pin, int level) {
    Call call("VoraIOWriteEx", pin);
    call.note("level", static_cast<uint32_t>(level));
    if (call.failsNow()) {
        return call.status();
    }
    Pin* p = call.board().pin(pin);
    if (p == nullptr || p->direction != 0) {
        return call.result(kV3Failed);  // only an output can be driven
    }
    p->level = static_cast<unsigned>(level) & 1;
    call.changed();
    return call.result(kV3Ok);
}

uint32_t VoraIOSetDirection(unsigned char pin, unsigned char direction, unsigned int* mask) {
    Call call("VoraIOSetDirection", pin);
    call.note("direction", direction);
    if (call.failsNow()) {
        return call.status();
    }
    Pin* p = call.board().pin(pin);
    if (p == nullptr || direction > 1 || (direction == 1 && !p->input) ||
        (direction == 0 && !p->output)) {
        return call.result(kV3Failed);
    }
    p->direction = direction;
    call.changed();
    uint32_t bits = 0;
    for (const Pin& each : call.board().pins) {
        bits |= each.direction == 1 && each.pin < 32 ? 1u << each.pin : 0;
    }
    call.out(mask, bits);
    return call.result(kV3Ok);
}

uint32_t VoraVCGetBrightRange(unsigned char* minimum, unsigned char* maximum,
                              unsigned char* step) {
    Call call("VoraVCGetBrightRange");
    if (call.failsNow()) {
        return call.status();
    }
    const Panel* screen = Screen(call.board());
    if (screen == nullptr || !screen->brightness) {
        return call.result(kV3Failed);
    }
    call.out(minimum, static_cast<unsigned char>(screen->minimum));
    call.out(maximum, static_cast<unsigned char>(screen->maximum));
    call.out(step, static_cast<unsigned char>(screen->step));
    return call.result(kV3Ok);
}

uint32_t VoraVCGetBright(unsigned char* brightness) {
    Call call("VoraVCGetBright");
    if (call.failsNow()) {
        return call.status();
    }
    const Panel* screen = Screen(call.board());
    if (screen == nullptr || !screen->brightness || brightness == nullptr) {
        return call.result(kV3Failed);
    }
    call.out(brightness, static_cast<unsigned char>(*screen->brightness));
    return call.result(kV3Ok);
}

uint32_t VoraVCScreenOn(void) {
    Call call("VoraVCScreenOn");
    return SetScreen(call, true);
}

uint32_t VoraVCScreenOff(void) {
    Call call("VoraVCScreenOff");
    return SetScreen(call, false);
}

uint32_t VoraVCSetBright(unsigned char brightness) {
    Call call("VoraVCSetBright");
    call.note("value", brightness);
    if (call.failsNow()) {
        return call.status();
    }
    Panel* screen = Screen(call.board());
    if (screen == nullptr || !screen->brightness || brightness < screen->minimum ||
        brightness > screen->maximum) {
        return call.result(kV3Failed);
    }
    screen->brightness = brightness;
    call.changed();
    return call.result(kV3Ok);
}

}  // namespace model

VORA3_LIBRARY(VORASIM_EXPORT, VORASIM_EXPORT)
