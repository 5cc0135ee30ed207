#include "FuncGPIO.h"

#include "function/Family.h"

Function* FuncGPIO::instance() {
    static Function* remembered = nullptr;
    return voradrv::CreateForLibrary<void, void, void>(remembered);
}

FuncGPIO::FuncGPIO()
    : GroupFamily(0x1040000, "GPIO",
                  "VORADrv GPIO Get Cap: unable to update an empty object with an empty object") {}

void FuncGPIO::createIPSOGPIOPackage() {}
