// Vora3GPIO: GPIO on the third-generation library. The library gives a pin
// count; pins 0 to count - 1 are named "GPIO" + number, and what each can be
// comes from two masks: the pins whose direction can change and the present
// direction of every pin. Reads and writes take the pin from the item id.
//
// No destructor of its own: the records and the block package are released
// once, by GroupFamily.
#pragma once

#include <cstdint>

#include "function/FuncGPIO.h"

class Vora3GPIO : public FuncGPIO {
public:
    // Asks the library for the pin count.
    Vora3GPIO();

    // `value` must be a JSON integer; it is checked before the id.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Passes the integer to the library unchecked (a direction as its low 8
    // bits). The library's success 1 is answered as 0, any other result is
    // passed back as it is.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    void createIPSOGPIOPackage() override;

private:
    uint32_t getPinInputCap(unsigned pin);
    uint32_t getPinOutputCap(unsigned pin);

    // Pins 0 to pinCount - 1 are published.
    unsigned pinCount = 0;
};
