// eCtl2GPIO: GPIO on an Embedded API library. Pins 0 to 7, each published
// when its direction can be read, named "GPIO" + number; what a pin can be
// comes from the library's input and output masks for that pin.
#pragma once

#include <cstdint>

#include "function/FuncGPIO.h"

class eCtl2GPIO : public FuncGPIO {
public:
    eCtl2GPIO();
    // No destructor of its own: the records and the block package are
    // released once, by the family.

    // `value` must be a JSON integer.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Passes the integer to the library unchecked; returns its status.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    void createIPSOGPIOPackage() override;

private:
    // The library's whole input (output) mask for the pin, whatever the
    // call's status; 0 when the library writes nothing.
    uint32_t getPinInputCap(unsigned pin);
    uint32_t getPinOutputCap(unsigned pin);
};
