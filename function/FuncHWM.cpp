#include "FuncHWM.h"

#include "function/Family.h"

Function* FuncHWM::instance() {
    static Function* remembered = nullptr;
    return voradrv::CreateForLibrary<void, void, void>(remembered);
}

FuncHWM::FuncHWM()
    : GroupFamily(0x1020000, "Hardware Monitor",
                  "VORADrv HWM Get Cap: unable to update an empty object with an empty object") {}

void FuncHWM::createIPSOHWMPackage() {}
