#include "Vora4HWM.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "binding/VORA4Handle.h"
#include "module/Status.h"

namespace {

constexpr unsigned int kNameSize = 32;

// How a group's raw library value becomes its published value.
enum class Conversion { TenthKelvin, Thousandths, Plain };

double Convert(Conversion conversion, unsigned int raw) {
    switch (conversion) {
        case Conversion::TenthKelvin:
            return (static_cast<double>(raw) - 2731.0) / 10.0;
        case Conversion::Thousandths:
            return static_cast<int32_t>(raw) / 1000.0;
        case Conversion::Plain:
        default:
            return static_cast<double>(raw);
    }
}

const char* const kVoltageNames[] = {"VCORE", "VCORE2", "V2.5", "V3.3", "V5",    "V12",
                                     "V5SB",  "V3SB",   "VBAT", "VN50", "VN120", "VTT",
                                     "V24",   "DC",     "DCSB", "VBATLI", "OEM0", "OEM1",
                                     "OEM2",  "OEM3",   "V1.05", "V1.5", "V1.8",  "12VS5"};
// Twelve positions, eleven names: the last position has no default name and
// is published with an empty one, the nearest to the rest of the table.
const char* const kTemperatureNames[] = {"CPU",  "Chipset", "System", "CPU2",
                                         "OEM0", "OEM1",    "OEM2",   "OEM3",
                                         "OEM4", "OEM5",    "System 2Graphic", ""};
const char* const kFanNames[] = {"CPU",  "System", "CPU2", "OEM0",     "OEM1",     "OEM2",    "OEM3",
                                 "OEM4", "OEM5",   "OEM6", "System 2", "System 3", "System 4"};
const char* const kOemNames[] = {"OEM0", "OEM1", "OEM2"};

// Fetches a sensor's name into `buffer` (kNameSize bytes); returns true when
// the caller must use the default name. A name too long for the buffer is
// cut to 30 characters and marked with '*'.
bool getHWMItemName(unsigned int libraryId, char* buffer) {
    std::fill(buffer, buffer + kNameSize, '\0');
    unsigned int length = kNameSize;
    const uint32_t status = VORA4Handle::mVoraBoardGetStringA(libraryId, buffer, &length);
    if (status == STATUS_SUCCESS) {
        buffer[kNameSize - 1] = '\0';  // whatever the library wrote
        return false;
    }
    if (status == STATUS_MORE_DATA) {
        buffer[30] = '*';
        buffer[31] = '\0';
        return false;
    }
    return true;
}

// A sensor group on this library: its library ids are libraryBase +
// position for `count` positions.
struct Group {
    SensorGroup sensors;
    uint32_t libraryBase;
    unsigned count;
    Conversion conversion;
    const char* const* names;
};

enum { kTemperature, kVoltage, kFan, kCurrent, kCaseOpen };

const Group kGroups[] = {
    {{"Temperature", "Cel", 0x20100, 0x1020101, 100.0, 0.0, "Temp", true},
     0x20000, 12, Conversion::TenthKelvin, kTemperatureNames},
    {{"Voltage", "V", 0x20200, 0x1020201, 50.0, 0.0, "VOLT", true},
     0x21000, 24, Conversion::Thousandths, kVoltageNames},
    {{"Fan Speed", "RPM", 0x20300, 0x1020301, 8000.0, 0.0, "FAN", true},
     0x22000, 13, Conversion::Plain, kFanNames},
    {{"Current", "A", 0x20400, 0x1020401, 3000.0, 0.0, "CURRENT", false},
     0x23000, 3, Conversion::Thousandths, kOemNames},
    {{"Case Open", "ON/OFF", 0x20500, 0x1020501, 1.0, 0.0, "CASEOPEN", true},
     0x24000, 3, Conversion::Plain, kOemNames},
};

}  // namespace

Vora4HWM::Vora4HWM() { items.reserve(5); }

void Vora4HWM::createIPSOHWMPackage() {
    createIPSOVoltPackage();
    createIPSOTempPackage();
    createIPSOFanPackage();
    createIPSOCurrentPackage();
    createIPSOCaseOpenPackage();
}

void Vora4HWM::createIPSOVoltPackage() { buildGroup(kVoltage); }
void Vora4HWM::createIPSOTempPackage() { buildGroup(kTemperature); }
void Vora4HWM::createIPSOFanPackage() { buildGroup(kFan); }
void Vora4HWM::createIPSOCurrentPackage() { buildGroup(kCurrent); }
void Vora4HWM::createIPSOCaseOpenPackage() { buildGroup(kCaseOpen); }

void Vora4HWM::buildGroup(int index) {
    const Group& group = kGroups[index];
    voradrv::JsonHolder array(json_array());
    bool found = false;
    for (unsigned p = 0; p < group.count; ++p) {
        const unsigned int libraryId = group.libraryBase + p;
        unsigned int raw = 0;
        if (VORA4Handle::mVoraBoardGetValue(libraryId, &raw) != STATUS_SUCCESS) {
            continue;
        }
        const uint32_t id = group.sensors.itemBase + p;
        idtoLibIDMap[id] = libraryId;
        char name[kNameSize];
        if (getHWMItemName(libraryId, name)) {
            std::snprintf(name, sizeof name, "%s", group.names[p]);
        }
        appendSensor(array.get(), group.sensors, name, Convert(group.conversion, raw), id);
        found = true;
    }
    addGroup(std::move(array), found, group.sensors);
}

uint32_t Vora4HWM::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    unsigned int raw = 0;
    const uint32_t status = readMapped(id, value, &VORA4Handle::mVoraBoardGetValue, raw);
    if (status != STATUS_SUCCESS) {
        return status;
    }
    for (const Group& group : kGroups) {
        if ((group.sensors.itemBase & 0xFFFFFF00u) == (id & 0xFFFFFF00u)) {
            json_real_set(value, Convert(group.conversion, raw));
            return STATUS_SUCCESS;
        }
    }
    return STATUS_NOT_FOUND;
}

uint32_t Vora4HWM::VoraIoTSetMDValue(uint32_t, json_t*) { return STATUS_UNSUPPORTED; }
