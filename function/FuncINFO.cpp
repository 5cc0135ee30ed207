#include "FuncINFO.h"

#include <cstdio>

#include "function/Family.h"
#include "function/JsonHolder.h"
#include "module/Status.h"

FuncINFO::FuncINFO() : Function(0x1010000, "Platform Information") {}

// The package is released here, once, for every implementation.
FuncINFO::~FuncINFO() {
    if (package != nullptr) {
        json_object_clear(package);
        json_decref(package);
    }
}

uint32_t FuncINFO::VoraIoTInitialize() {
    voradrv::JsonHolder array(json_array());
    createIPSOInfoPackage(array.get());
    if (!json_is_array(array.get()) || json_array_size(array.get()) == 0) {
        std::puts("VORADrv Info init: json_pack array failed");
        return STATUS_ERROR;
    }
    if (package != nullptr) {
        json_decref(package);
        package = nullptr;
    }
    // The packager takes the array over.
    package = IPSO_Capability_Packager(array.release(), name.c_str(), "info", kBaseTime,
                                       kLayoutVersion, static_cast<int>(getClassID()));
    if (package == nullptr || !json_is_object(package) || json_object_size(package) == 0) {
        std::puts("VORADrv Info init: IPSO Json_pack array failed");
        return STATUS_ERROR;
    }
    return STATUS_SUCCESS;
}

uint32_t FuncINFO::VoraIoTUninitialize() { return STATUS_SUCCESS; }

uint32_t FuncINFO::VoraIoTGetMDCapability(json_t* capability) {
    return voradrv::MergeCapability(
        package, capability,
        "VORADrv Info Get Cap: unable to update an emtpy object with an empty object");
}

uint32_t FuncINFO::VoraIoTSetMDEventHandler(VoraIoTEventHandler) { return STATUS_SUCCESS; }

void FuncINFO::createIPSOInfoPackage(json_t*) {}
