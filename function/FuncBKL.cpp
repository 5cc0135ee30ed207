#include "FuncBKL.h"

#include "function/Family.h"
#include "module/Status.h"

Function* FuncBKL::instance() {
    static Function* remembered = nullptr;
    return voradrv::CreateForLibrary<void, void, void>(remembered);
}

FuncBKL::FuncBKL()
    : GroupFamily(0x1050000, "Backlight",
                  "VORADrv Backlight Get Cap: unable to update an empty object with an empty object") {}

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
