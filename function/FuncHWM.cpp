#include "FuncHWM.h"

#include <cstdio>
#include <memory>

#include "module/Status.h"

FuncHWM::FuncHWM()
    : GroupFamily(0x1020000, "Hardware Monitor",
                  "VORADrv HWM Get Cap: unable to update an empty object with an empty object") {}

void FuncHWM::createIPSOHWMPackage() {}

void FuncHWM::appendSensor(json_t* array, const SensorGroup& group, const char* name,
                           double value, uint32_t id) {
    json_t* element = json_pack("{s:s, s:o, s:f, s:f, s:s, s:i, s:s}", "n", name, "v",
                                json_real(value), "max", group.maximum, "min", group.minimum,
                                "asm", "r", "id", static_cast<int>(id), "sui", "Chart");
    if (json_array_append_new(array, element) != 0) {
        std::printf("VORADrv HWM %s: cap unable to append new value\n", group.tag);
    }
}

void FuncHWM::addGroup(voradrv::JsonHolder array, bool found, const SensorGroup& group) {
    if (!found) {
        return;
    }
    if (group.checkArray && (!json_is_array(array.get()) || json_array_size(array.get()) == 0)) {
        std::printf("VORADrv HWM %s: cap json_pack array failed\n", group.tag);
        return;
    }
    // Owned here until the block's list holds it.
    auto record = std::make_unique<HWMInfo>(group.label);
    record->group = IPSO_Capability_Packager(array.release(), group.label, group.unit, kBaseTime,
                                             kLayoutVersion, group.groupId);
    if (record->group == nullptr || !json_is_object(record->group) ||
        json_object_size(record->group) == 0) {
        std::printf("VORADrv HWM %s: ipso cap json_pack array failed\n", group.tag);
    }
    items.push_back(record.get());
    record.release();
}

bool FuncHWM::isReal(json_t* value) {
    if (json_is_real(value)) {
        return true;
    }
    std::puts("VORADRV HWM Get Value: not a json real");
    return false;
}

uint32_t FuncHWM::readMapped(uint32_t id, json_t* value,
                             uint32_t (*read)(unsigned int, unsigned int*), unsigned int& raw) {
    const auto item = idtoLibIDMap.find(id);
    if (item == idtoLibIDMap.end()) {
        return STATUS_NOT_FOUND;
    }
    if (!isReal(value)) {
        return STATUS_INVALID_VALUE;
    }
    return read(item->second, &raw) == STATUS_SUCCESS ? STATUS_SUCCESS : STATUS_ERROR;
}
