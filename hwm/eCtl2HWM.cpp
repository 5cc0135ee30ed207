#include "eCtl2HWM.h"

#include <utility>

#include "binding/ECTL2Handle.h"
#include "module/Status.h"

namespace {

// The library's answer for a sensor the board has.
constexpr unsigned int kPresent = 1;

// Voltages by 4 * block + slot. The voltage names end at index 11; 12 to 15
// are the first four temperature names.
const char* const kVoltageNames[] = {"VCORE", "V2.5", "V3.3",  "VBAT",   "V5",  "V5SB",
                                     "V12",   "DC",   "DCSB",  "BAT",    "V3.35", "VCOREB",
                                     "CPU",   "ChipSet", "System", "CPU1"};
// Only the first three are probed.
const char* const kTemperatureNames[] = {"CPU",  "ChipSet",  "System",  "CPU1",
                                         "ChipSet1", "System1", "CPU2", "ChipSet2",
                                         "System2",  "CPU3",    "ChipSet3", "System3"};
const char* const kFanNames[] = {"CPU", "System", "Other"};
const char* const kCurrentNames[] = {"Current"};

// A sensor group on this library. Its library ids are libraryBase +
// blockStride * block + slotStride * slot; the item id is the group's first
// item + slot, whatever the block, and the name is names[slots * block +
// slot].
struct Group {
    SensorGroup sensors;
    uint32_t libraryBase;
    unsigned blocks;
    unsigned blockStride;
    unsigned slots;
    unsigned slotStride;
    bool thousandths;  // signed thousandths (V, A); else the plain unsigned number
    const char* const* names;
};

enum { kVoltage, kTemperature, kFan, kCurrent };

const Group kGroups[] = {
    {{"Voltage", "V", 0x20200, 0x1020201, 15.0, 0.0, "VOLT", true},
     0x21004, 4, 16, 4, 4, true, kVoltageNames},
    {{"Temperature", "Cel", 0x20100, 0x1020101, 100.0, 0.0, "Temp", true},
     0x20000, 1, 0, 3, 1, false, kTemperatureNames},
    {{"Fan Speed", "RPM", 0x20300, 0x1020301, 8000.0, 0.0, "FAN", true},
     0x22000, 1, 0, 3, 1, false, kFanNames},
    {{"Current", "A", 0x20400, 0x1020401, 3000.0, 0.0, "CURRENT", false},
     0x23000, 1, 0, 1, 1, true, kCurrentNames},
};

double Convert(bool thousandths, unsigned int raw) {
    return thousandths ? static_cast<int32_t>(raw) / 1000.0 : static_cast<double>(raw);
}

}  // namespace

eCtl2HWM::eCtl2HWM() { items.reserve(5); }

void eCtl2HWM::createIPSOHWMPackage() {
    createIPSOVoltPackage();
    createIPSOTempPackage();
    createIPSOFanPackage();
    createIPSOCurrentPackage();
}

void eCtl2HWM::createIPSOVoltPackage() { buildGroup(kVoltage); }
void eCtl2HWM::createIPSOTempPackage() { buildGroup(kTemperature); }
void eCtl2HWM::createIPSOFanPackage() { buildGroup(kFan); }
void eCtl2HWM::createIPSOCurrentPackage() { buildGroup(kCurrent); }

void eCtl2HWM::buildGroup(int index) {
    const Group& group = kGroups[index];
    voradrv::JsonHolder array(json_array());
    bool found = false;
    for (unsigned block = 0; block < group.blocks; ++block) {
        for (unsigned slot = 0; slot < group.slots; ++slot) {
            const unsigned int libraryId =
                group.libraryBase + group.blockStride * block + group.slotStride * slot;
            // One variable takes the capability answer and then the reading.
            // It is cleared before each capability call: a library that fails
            // without writing must not let the previous sensor's reading (a 1)
            // make this one present.
            unsigned int v = 0;
            ECTL2Handle::mEApiHWMGetCaps(libraryId, &v);
            if (v != kPresent) {
                continue;
            }
            // The reading's status is not looked at: a failed reading
            // publishes what the variable holds, the capability answer.
            ECTL2Handle::mEApiBoardGetValue(libraryId, &v);
            // Blocks share the slot's item id; the last block found wins.
            const uint32_t id = group.sensors.itemBase + slot;
            idtoLibIDMap[id] = libraryId;
            appendSensor(array.get(), group.sensors, group.names[group.slots * block + slot],
                         Convert(group.thousandths, v), id);
            found = true;
        }
    }
    addGroup(std::move(array), found, group.sensors);
}

uint32_t eCtl2HWM::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    unsigned int raw = 0;
    const uint32_t status = readMapped(id, value, &ECTL2Handle::mEApiBoardGetValue, raw);
    if (status != STATUS_SUCCESS) {
        return status;
    }
    const uint32_t kind = id & 0xFFFFFF00u;
    const bool thousandths = kind == (kGroups[kVoltage].sensors.itemBase & 0xFFFFFF00u) ||
                             kind == (kGroups[kCurrent].sensors.itemBase & 0xFFFFFF00u);
    json_real_set(value, Convert(thousandths, raw));
    return STATUS_SUCCESS;
}

uint32_t eCtl2HWM::VoraIoTSetMDValue(uint32_t, json_t*) { return STATUS_UNSUPPORTED; }
