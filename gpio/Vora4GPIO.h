// Vora4GPIO: GPIO on the fourth-generation library. Pins 0 to 127 are found
// from the four banks' input and output capability masks and named by the
// library (or "GPIO" + number).
#pragma once

#include <cstdint>

#include "function/FuncGPIO.h"

class Vora4GPIO : public FuncGPIO {
public:
    // Reads the banks' capabilities into pinMask.
    Vora4GPIO();

    // `value` must be a JSON integer.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Passes the integer to the library unchecked; returns its status.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    void createIPSOGPIOPackage() override;

private:
    uint32_t getPinInputCap(unsigned pin);
    uint32_t getPinOutputCap(unsigned pin);

    // Bit b of word w is set when pin 32 * w + b exists.
    uint32_t pinMask[4] = {};
};
