// FuncBKL: the backlight family, one group per display panel holding the
// panel's controls (brightness, frequency, polarity, on/off).
#pragma once

#include "function/GroupFamily.h"
#include "function/JsonHolder.h"

class FuncBKL : public GroupFamily {
public:
    // Runs the package builder, then joins its records into the package.
    uint32_t VoraIoTInitialize() override {
        createIPSOBKLPackage();
        return joinRecords();
    }

    struct Backlight : GroupRecord {
        using GroupRecord::GroupRecord;
    };

    // The block of this family for the board library that is up.
    static Function* instance();

    // Appends one Backlight per panel to items.
    virtual void createIPSOBKLPackage();

    // Unlike the other families, empties and releases the block package here.
    uint32_t VoraIoTUninitialize() override;

protected:
    FuncBKL();

    // A settable control {"n", <key>, "max", "min", "id", "u", "asm": "rw",
    // "ui"} appended to `array`, `key` being "v" or "bv"; a failed append
    // (also to a missing array) prints "VORADrv BKL : cap <what> unable to
    // append new value".
    void appendControl(json_t* array, const char* what, const char* label, const char* key,
                       uint32_t value, uint32_t max, uint32_t min, uint32_t id, const char* unit);

    // Publishes a panel named `name` whose controls are in `array` (taken
    // over), as a Backlight record with group id `groupId`. Returns false when
    // the array is missing or empty; the panel is then dropped and the
    // package must end.
    bool publishPanel(const char* name, voradrv::JsonHolder array, uint32_t groupId);

    // True when `value` is a JSON integer; otherwise prints "VORADRV BKL Get
    // Value: not a json integer" (on reads and writes alike) and the caller
    // answers STATUS_INVALID_VALUE.
    static bool isInteger(json_t* value);

    // The first checks of a get or set through `idtoLibIDMap`: an unknown id
    // answers STATUS_NOT_FOUND, a value that is not an integer
    // STATUS_INVALID_VALUE (with its message). STATUS_SUCCESS sets `panel`.
    uint32_t findPanel(uint32_t id, json_t* value, unsigned int& panel);

    // A get's answer from the library's `status`: STATUS_ERROR when the read
    // failed (the host's value untouched), else the value set to `reading`.
    static uint32_t answerRead(uint32_t status, json_t* value, unsigned int reading);

    static constexpr uint32_t kFrequencyKind = 0x1050200;
    static constexpr uint32_t kPolarityKind = 0x1050300;
    static constexpr uint32_t kOnOffKind = 0x1050400;
    static constexpr uint32_t kBrightnessKind = 0x1050500;
};
