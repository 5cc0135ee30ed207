#include "eCtl2GPIO.h"

#include <cstdio>

#include "binding/ECTL2Handle.h"
#include "module/Status.h"

namespace {

constexpr unsigned kPins = 8;
constexpr unsigned int kNameSize = 16;


// Both masks start at 0, so a call that fails without writing reports a pin
// that can be neither.
void DirectionCaps(unsigned pin, unsigned int& inputs, unsigned int& outputs) {
    inputs = 0;
    outputs = 0;
    ECTL2Handle::mEApiGPIOGetDirectionCaps(pin, &inputs, &outputs);
}

}  // namespace

eCtl2GPIO::eCtl2GPIO() { items.reserve(kPins); }

uint32_t eCtl2GPIO::getPinInputCap(unsigned pin) {
    unsigned int inputs;
    unsigned int outputs;
    DirectionCaps(pin, inputs, outputs);
    return inputs;
}

uint32_t eCtl2GPIO::getPinOutputCap(unsigned pin) {
    unsigned int inputs;
    unsigned int outputs;
    DirectionCaps(pin, inputs, outputs);
    return outputs;
}

void eCtl2GPIO::createIPSOGPIOPackage() {
    for (unsigned pin = 0; pin < kPins; ++pin) {
        // A pin whose direction cannot be read is not there.
        unsigned int direction = 0;
        if (ECTL2Handle::mEApiGPIOGetDirection(pin, 1, &direction) != STATUS_SUCCESS) {
            continue;
        }
        // A level the library cannot answer publishes 0.
        unsigned int level = 0;
        ECTL2Handle::mEApiGPIOGetLevel(pin, 1, &level);
        char name[kNameSize];
        std::snprintf(name, sizeof name, "GPIO%u", pin);
        if (!publishMappedPin(name, pin, direction, level, [&] { return getPinInputCap(pin); },
                              [&] { return getPinOutputCap(pin); })) {
            return;
        }
    }
}

uint32_t eCtl2GPIO::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    return getMappedPin(id, value, &ECTL2Handle::mEApiGPIOGetDirection,
                        &ECTL2Handle::mEApiGPIOGetLevel);
}

uint32_t eCtl2GPIO::VoraIoTSetMDValue(uint32_t id, json_t* value) {
    return setMappedPin(id, value, &ECTL2Handle::mEApiGPIOSetDirection,
                        &ECTL2Handle::mEApiGPIOSetLevel);
}
