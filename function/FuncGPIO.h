// FuncGPIO: the GPIO family, one group per pin with two items, its
// direction (1 input, 0 output) and its level (0 low, 1 high).
#pragma once

#include <functional>

#include "function/GroupFamily.h"

class FuncGPIO : public GroupFamily {
public:
    // Runs the package builder, then joins its records into the package.
    uint32_t VoraIoTInitialize() override {
        createIPSOGPIOPackage();
        return joinRecords();
    }

    struct GPIOPIN : GroupRecord {
        using GroupRecord::GroupRecord;
    };

    // The block of this family for the board library that is up.
    static Function* instance();

    // Appends one GPIOPIN per pin to items.
    virtual void createIPSOGPIOPackage();

protected:
    FuncGPIO();

    // What the pin being published can be, asked of the library afresh on
    // each call (the block's private getPinInputCap and getPinOutputCap): 1
    // when it can be an input (an output), 0 when not, 0xFFFFFFFF when the
    // library cannot tell.
    using CapQuery = std::function<uint32_t()>;

    // Publishes pin `pin` named `name` with its present `direction` and
    // `level` as the library gave them (the third generation's level is
    // signed): a GPIOPIN record whose group holds the "Dir" and "Level"
    // items, their ranges and access modes taken from the capabilities.
    // Returns false when the pin's items could not be packed; the pin is then
    // dropped and the package must end there.
    bool publishPin(const char* name, unsigned pin, json_int_t direction, json_int_t level,
                    const CapQuery& inputCap, const CapQuery& outputCap);

    // publishPin for a pin that reads and writes go to through
    // `idtoLibIDMap` (item id -> library pin): both items are mapped first,
    // so they stay reachable even when the pin cannot be published.
    bool publishMappedPin(const char* name, unsigned pin, json_int_t direction,
                          json_int_t level, const CapQuery& inputCap, const CapQuery& outputCap);

    // Reads and writes of pins through `idtoLibIDMap`, with mask 1, for
    // libraries whose calls share these shapes.
    using PinRead = uint32_t (*)(unsigned int pin, unsigned int mask, unsigned int* value);
    using PinWrite = uint32_t (*)(unsigned int pin, unsigned int mask, unsigned int value);
    uint32_t getMappedPin(uint32_t id, json_t* value, PinRead direction, PinRead level);
    uint32_t setMappedPin(uint32_t id, json_t* value, PinWrite direction, PinWrite level);

    // True when `value` is a JSON integer; otherwise prints "VORADRV GPIO Get
    // Value: not a json integer" (on reads and writes alike) and the caller
    // answers STATUS_INVALID_VALUE.
    static bool isInteger(json_t* value);

    static constexpr uint32_t kGroupBase = 0x1040101;      // + pin
    static constexpr uint32_t kDirectionBase = 0x1040201;  // + pin
    static constexpr uint32_t kLevelBase = 0x1040301;      // + pin
    static constexpr uint32_t kDirectionKind = 0x1040200;
    static constexpr uint32_t kLevelKind = 0x1040300;
};
