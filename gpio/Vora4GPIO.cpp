#include "Vora4GPIO.h"

#include <cstdio>

#include "binding/VORA4Handle.h"
#include "module/Status.h"
#include "module/StringUtil.h"

namespace {

constexpr unsigned kPins = 128;
constexpr unsigned int kBankBase = 0x10000;      // capability id of bank 0
constexpr unsigned int kPinNameBase = 0x40000000;  // string id of pin 0's name
constexpr unsigned int kNameSize = 32;

// Capability `item` (0 inputs, 1 outputs) of the pin's bank: bit (pin mod
// 32) of the mask, or 0xFFFFFFFF when the library cannot answer.
uint32_t PinCap(unsigned pin, unsigned int item) {
    unsigned int mask = 0;
    if (VORA4Handle::mVoraGPIOGetCaps(kBankBase + pin / 32, item, &mask) !=
        STATUS_SUCCESS) {
        return 0xFFFFFFFF;
    }
    return (mask >> (pin % 32)) & 1u;
}

}  // namespace

Vora4GPIO::Vora4GPIO() {
    size_t pins = 0;
    for (unsigned bank = 0; bank < 4; ++bank) {
        unsigned int inputs = 0;
        unsigned int outputs = 0;
        if (VORA4Handle::mVoraGPIOGetCaps(kBankBase + bank, 0, &inputs) ==
                STATUS_SUCCESS &&
            VORA4Handle::mVoraGPIOGetCaps(kBankBase + bank, 1, &outputs) ==
                STATUS_SUCCESS) {
            pinMask[bank] = inputs | outputs;
        }
        pins += static_cast<size_t>(__builtin_popcount(pinMask[bank]));
    }
    items.reserve(pins);
}

uint32_t Vora4GPIO::getPinInputCap(unsigned pin) { return PinCap(pin, 0); }

uint32_t Vora4GPIO::getPinOutputCap(unsigned pin) { return PinCap(pin, 1); }

void Vora4GPIO::createIPSOGPIOPackage() {
    for (unsigned pin = 0; pin < kPins; ++pin) {
        if ((pinMask[pin / 32] >> (pin % 32) & 1u) == 0) {
            continue;
        }
        char name[kNameSize] = {};
        unsigned int length = kNameSize;
        const uint32_t status =
            VORA4Handle::mVoraBoardGetStringA(kPinNameBase | pin, name, &length);
        if (status == STATUS_SUCCESS) {
            name[kNameSize - 1] = '\0';  // whatever the library wrote
        } else if (status == STATUS_MORE_DATA) {
            name[30] = '*';
            name[31] = '\0';
        } else {
            char fallback[16];
            std::snprintf(fallback, sizeof fallback, "GPIO%u", pin);
            StringCopy(name, fallback);
        }
        // A read the library cannot answer publishes 0.
        unsigned int direction = 0;
        unsigned int level = 0;
        VORA4Handle::mVoraGPIOGetDirection(pin, 1, &direction);
        VORA4Handle::mVoraGPIOGetLevel(pin, 1, &level);
        if (!publishMappedPin(name, pin, direction, level, [&] { return getPinInputCap(pin); },
                              [&] { return getPinOutputCap(pin); })) {
            return;
        }
    }
}

uint32_t Vora4GPIO::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    return getMappedPin(id, value, &VORA4Handle::mVoraGPIOGetDirection,
                        &VORA4Handle::mVoraGPIOGetLevel);
}

uint32_t Vora4GPIO::VoraIoTSetMDValue(uint32_t id, json_t* value) {
    return setMappedPin(id, value, &VORA4Handle::mVoraGPIOSetDirection,
                        &VORA4Handle::mVoraGPIOSetLevel);
}
