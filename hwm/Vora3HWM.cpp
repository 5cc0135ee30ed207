#include "Vora3HWM.h"

#include <cmath>
#include <utility>
#include <limits>

#include "binding/VORA3Handle.h"
#include "module/Status.h"

namespace {

// The library answers 1 for a sensor it could read.
constexpr uint32_t kLibraryOk = 1;

// `value` times `scale` in single precision, cut towards zero to a 32-bit
// integer, divided back in double precision: 3.3049 V becomes 3.304, -12.38
// degrees -12.3. A product beyond the 32-bit range is held at its end, and a
// value that is not a number reads as 0, so the cut is always defined.
double Truncated(float value, float scale) {
    const float scaled = value * scale;
    int32_t whole = 0;
    if (std::isnan(scaled)) {
        whole = 0;
    } else if (scaled >= 2147483648.0f) {
        whole = std::numeric_limits<int32_t>::max();
    } else if (scaled < -2147483648.0f) {
        whole = std::numeric_limits<int32_t>::min();
    } else {
        whole = static_cast<int32_t>(scaled);
    }
    return whole / static_cast<double>(scale);
}

// The readers below start their output at 0, so a reading the library does
// not write publishes 0, never an uninitialised value. Each returns true when
// the library answered 1.
bool ReadVoltage(uint32_t sensor, double& volts) {
    float v = 0.0f;
    const bool ok = VORA3Handle::mVoraHWMGetVoltage(sensor, &v, nullptr) == kLibraryOk;
    volts = Truncated(v, 1000.0f);
    return ok;
}

bool ReadTemperature(uint32_t sensor, double& celsius) {
    float t = 0.0f;
    const bool ok = VORA3Handle::mVoraHWMGetTemperature(static_cast<unsigned short>(sensor), &t,
                                                        nullptr) == kLibraryOk;
    celsius = Truncated(t, 10.0f);
    return ok;
}

bool ReadFan(uint32_t sensor, double& rpm) {
    unsigned short speed = 0;
    const bool ok = VORA3Handle::mVoraHWMGetFanSpeed(static_cast<unsigned short>(sensor), &speed,
                                                     nullptr) == kLibraryOk;
    rpm = speed;
    return ok;
}

// The support masks: sensor 0 asked with the mask output. The call's status
// is not looked at; a mask the library does not write stays 0.
uint32_t VoltageMask() {
    float v = 0.0f;
    unsigned int mask = 0;
    VORA3Handle::mVoraHWMGetVoltage(0, &v, &mask);
    return mask;
}

uint32_t TemperatureMask() {
    float t = 0.0f;
    unsigned short mask = 0;
    VORA3Handle::mVoraHWMGetTemperature(0, &t, &mask);
    return mask;
}

uint32_t FanMask() {
    unsigned short speed = 0;
    unsigned short mask = 0;
    VORA3Handle::mVoraHWMGetFanSpeed(0, &speed, &mask);
    return mask;
}

const char* const kVoltageNames[] = {"VCORE", "V2.5", "V3.3",  "V5",     "V12",   "V5SB",
                                     "V3SB",  "VBAT", "VN50",  "VN120",  "VTT",   "VCORE2",
                                     "V1.05", "V1.5", "V1.8",  "V24"};
const char* const kTemperatureNames[] = {"CPU", "System", "AUX", "CPU2"};
const char* const kFanNames[] = {"CPU", "System", "Other", "CPU2", "AUX2"};

// A sensor group on this library: sensor b is the library's sensor 1 << b,
// for the bits 0 to bits - 1.
struct Group {
    SensorGroup sensors;
    unsigned bits;
    const char* const* names;
    uint32_t (*supportMask)();
    bool (*read)(uint32_t sensor, double& value);
};

enum { kVoltage, kTemperature, kFan };

const Group kGroups[] = {
    {{"Voltage", "V", 0x20200, 0x1020201, 15.0, 0.0, "VOLT", true},
     16, kVoltageNames, VoltageMask, ReadVoltage},
    {{"Temperature", "Cel", 0x20100, 0x1020101, 100.0, 0.0, "Temp", true},
     4, kTemperatureNames, TemperatureMask, ReadTemperature},
    {{"Fan Speed", "RPM", 0x20300, 0x1020301, 8000.0, 0.0, "FAN", true},
     5, kFanNames, FanMask, ReadFan},
};

}  // namespace

Vora3HWM::Vora3HWM() { items.reserve(5); }

void Vora3HWM::createIPSOHWMPackage() {
    createIPSOVoltPackage();
    createIPSOTempPackage();
    createIPSOFanPackage();
}

void Vora3HWM::createIPSOVoltPackage() { buildGroup(kVoltage); }
void Vora3HWM::createIPSOTempPackage() { buildGroup(kTemperature); }
void Vora3HWM::createIPSOFanPackage() { buildGroup(kFan); }

void Vora3HWM::buildGroup(int index) {
    const Group& group = kGroups[index];
    voradrv::JsonHolder array(json_array());
    bool found = false;
    const uint32_t mask = group.supportMask();
    for (unsigned b = 0; b < group.bits; ++b) {
        if ((mask >> b & 1u) == 0) {
            continue;
        }
        double value = 0.0;
        if (!group.read(1u << b, value)) {
            continue;  // a sensor that does not answer is left out silently
        }
        appendSensor(array.get(), group.sensors, group.names[b], value, group.sensors.itemBase + b);
        found = true;
    }
    addGroup(std::move(array), found, group.sensors);
}

uint32_t Vora3HWM::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    if (!isReal(value)) {
        return STATUS_INVALID_VALUE;
    }
    // The item number selects the bit, the shift count taken modulo 32: item
    // 0 reads sensor 1 << 31. Ids are not checked against what was published.
    const uint32_t sensor = 1u << (((id & 0xFFu) - 1u) % 32u);
    for (const Group& group : kGroups) {
        if ((group.sensors.itemBase & 0xFFFFFF00u) == (id & 0xFFFFFF00u)) {
            // The library's answer is not looked at: a reading it could not
            // take still succeeds, with the reader's starting value 0.
            double reading = 0.0;
            group.read(sensor, reading);
            json_real_set(value, reading);
            return STATUS_SUCCESS;
        }
    }
    return STATUS_NOT_FOUND;
}

uint32_t Vora3HWM::VoraIoTSetMDValue(uint32_t, json_t*) { return STATUS_UNSUPPORTED; }
