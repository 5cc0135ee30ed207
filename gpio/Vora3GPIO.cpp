#include "Vora3GPIO.h"

#include <algorithm>
#include <cstdio>

#include "binding/VORA3Handle.h"
#include "module/Status.h"

namespace {

// The library reports success as 1.
constexpr uint32_t kLibraryOk = 1;
// Mask selectors: the pins whose direction can be changed, and the present
// direction of every pin (bit set = input). Pin p is bit p mod 32 of both.
constexpr unsigned int kChangeable = 2;
constexpr unsigned int kDirections = 32;
// Pins are addressed by an 8-bit index and published as item numbers pin + 1
// in the id's low byte, so at most 255 pins can be published: a larger count
// would give pins the ids of other items. The count (the sum of the
// library's two counts, as 32-bit arithmetic) is cut to that, which also
// bounds the allocation.
constexpr uint32_t kMaxPins = 255;

uint32_t Mapped(uint32_t result) { return result == kLibraryOk ? STATUS_SUCCESS : result; }

// The pin an item id addresses: its item number less one, as 8 bits, so
// item number 0 is pin 255.
unsigned char PinOf(uint32_t id) { return static_cast<unsigned char>((id & 0xFFu) - 1u); }

// Reads mask 2, then mask 32, whatever the first answered; false when
// either read does not answer 1.
bool ReadMasks(unsigned int& changeable, unsigned int& directions) {
    changeable = 0;
    directions = 0;
    const bool first = VORA3Handle::mVoraIOQueryMask(kChangeable, &changeable) == kLibraryOk;
    const bool second = VORA3Handle::mVoraIOQueryMask(kDirections, &directions) == kLibraryOk;
    return first && second;
}

}  // namespace

Vora3GPIO::Vora3GPIO() {
    unsigned int first = 0;
    unsigned int second = 0;
    // Any answer but 0 counts here; counts the library does not write stay 0.
    if (VORA3Handle::mVoraIOCountEx(&first, &second) != 0) {
        pinCount = std::min<uint32_t>(first + second, kMaxPins);
    }
    items.reserve(pinCount);
}

// A pin whose direction can change can be both; a fixed pin only what it is.
uint32_t Vora3GPIO::getPinOutputCap(unsigned pin) {
    unsigned int changeable = 0;
    unsigned int directions = 0;
    if (!ReadMasks(changeable, directions)) {
        return 0xFFFFFFFF;
    }
    const unsigned b = pin % 32;
    return ((changeable >> b & 1u) != 0 || (directions >> b & 1u) == 0) ? 1 : 0;
}

uint32_t Vora3GPIO::getPinInputCap(unsigned pin) {
    unsigned int changeable = 0;
    unsigned int directions = 0;
    if (!ReadMasks(changeable, directions)) {
        return 0xFFFFFFFF;
    }
    const unsigned b = pin % 32;
    return ((changeable >> b & 1u) != 0 || (directions >> b & 1u) != 0) ? 1 : 0;
}

void Vora3GPIO::createIPSOGPIOPackage() {
    for (unsigned pin = 0; pin < pinCount; ++pin) {
        char name[16];
        std::snprintf(name, sizeof name, "GPIO%u", pin);
        // Statuses not checked: a value the library does not write publishes 0.
        unsigned int directions = 0;
        VORA3Handle::mVoraIOQueryMask(kDirections, &directions);
        int level = 0;
        VORA3Handle::mVoraIOReadEx(static_cast<unsigned char>(pin), &level);
        if (!publishPin(name, pin, directions >> (pin % 32) & 1u, level,
                        [&] { return getPinInputCap(pin); },
                        [&] { return getPinOutputCap(pin); })) {
            return;
        }
    }
}

uint32_t Vora3GPIO::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    if (!isInteger(value)) {
        return STATUS_INVALID_VALUE;
    }
    const unsigned char pin = PinOf(id);
    switch (id & 0xFFFFFF00u) {
        case kDirectionKind: {
            unsigned int directions = 0;
            if (VORA3Handle::mVoraIOQueryMask(kDirections, &directions) != kLibraryOk) {
                return STATUS_ERROR;
            }
            json_integer_set(value, directions >> (pin % 32) & 1u);
            return STATUS_SUCCESS;
        }
        case kLevelKind: {
            int level = 0;
            if (VORA3Handle::mVoraIOReadEx(pin, &level) != kLibraryOk) {
                return STATUS_ERROR;
            }
            json_integer_set(value, level);
            return STATUS_SUCCESS;
        }
        default:
            return STATUS_NOT_FOUND;
    }
}

uint32_t Vora3GPIO::VoraIoTSetMDValue(uint32_t id, json_t* value) {
    if (!isInteger(value)) {
        return STATUS_INVALID_VALUE;
    }
    const auto v = static_cast<uint32_t>(json_integer_value(value));
    const unsigned char pin = PinOf(id);
    switch (id & 0xFFFFFF00u) {
        case kDirectionKind: {
            unsigned int directions = 0;  // written by the library, not used
            return Mapped(
                VORA3Handle::mVoraIOSetDirection(pin, static_cast<unsigned char>(v), &directions));
        }
        case kLevelKind:
            return Mapped(VORA3Handle::mVoraIOWriteEx(pin, static_cast<int>(v)));
        default:
            return STATUS_NOT_FOUND;
    }
}
