#include "FuncBKL.h"

#include <cstdio>
#include <memory>

#include "module/Status.h"

FuncBKL::FuncBKL()
    : GroupFamily(0x1050000, "Backlight",
                  "VORADrv Backlight Get Cap: unable to update an empty object with an empty "
                  "object") {}

void FuncBKL::createIPSOBKLPackage() {}

// The pointer is cleared, so the destructor does not release the package a
// second time.
uint32_t FuncBKL::VoraIoTUninitialize() {
    if (package != nullptr) {
        json_object_clear(package);
        json_decref(package);
        package = nullptr;
    }
    return STATUS_SUCCESS;
}

void FuncBKL::appendControl(json_t* array, const char* what, const char* label, const char* key,
                            uint32_t value, uint32_t max, uint32_t min, uint32_t id,
                            const char* unit) {
    json_t* item = json_pack("{s:s, s:o, s:i, s:i, s:i, s:s, s:s, s:s}", "n", label, key,
                             json_integer(value), "max", static_cast<int>(max), "min",
                             static_cast<int>(min), "id", static_cast<int>(id), "u", unit, "asm",
                             "rw", "ui", getUIProperty("rw"));
    if (json_array_append_new(array, item) != 0) {
        std::printf("VORADrv BKL : cap %s unable to append new value\n", what);
    }
}

bool FuncBKL::publishPanel(const char* name, voradrv::JsonHolder array, uint32_t groupId) {
    if (!json_is_array(array.get()) || json_array_size(array.get()) == 0) {
        std::puts("VORADrv BKL: cap json_pack array failed");
        return false;
    }
    // Owned here until the block's list holds it (which may have to grow).
    auto record = std::make_unique<Backlight>(name);
    record->group = IPSO_Capability_Packager(array.release(), name, "info", kBaseTime,
                                             kLayoutVersion, static_cast<int>(groupId));
    if (record->group == nullptr || !json_is_object(record->group) ||
        json_object_size(record->group) == 0) {
        std::puts("VORADrv BKL: ipso cap json_pack array failed");
    }
    items.push_back(record.get());
    record.release();
    return true;
}

bool FuncBKL::isInteger(json_t* value) {
    if (json_is_integer(value)) {
        return true;
    }
    std::puts("VORADRV BKL Get Value: not a json integer");
    return false;
}

uint32_t FuncBKL::findPanel(uint32_t id, json_t* value, unsigned int& panel) {
    const auto mapped = idtoLibIDMap.find(id);
    if (mapped == idtoLibIDMap.end()) {
        return STATUS_NOT_FOUND;
    }
    if (!isInteger(value)) {
        return STATUS_INVALID_VALUE;
    }
    panel = mapped->second;
    return STATUS_SUCCESS;
}

uint32_t FuncBKL::answerRead(uint32_t status, json_t* value, unsigned int reading) {
    if (status != STATUS_SUCCESS) {
        return STATUS_ERROR;
    }
    json_integer_set(value, static_cast<json_int_t>(reading));
    return STATUS_SUCCESS;
}
