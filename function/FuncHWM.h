// FuncHWM: the hardware-monitor family, one group per sensor kind.
#pragma once

#include "function/GroupFamily.h"
#include "function/JsonHolder.h"

// One kind of sensor as a capability group: label, unit, ids and limits,
// and the word the group's messages use ("VOLT" in "VORADrv HWM VOLT: ...").
struct SensorGroup {
    const char* label;
    const char* unit;
    int groupId;          // class id plus group times 0x100, e.g. 0x20200
    uint32_t itemBase;    // id of the group's first item, e.g. 0x1020201
    double maximum;
    double minimum;
    const char* tag;
    bool checkArray;      // the current group never checks its array
};

class FuncHWM : public GroupFamily {
public:
    // Runs the package builder, then joins its records into the package.
    uint32_t VoraIoTInitialize() override {
        createIPSOHWMPackage();
        return joinRecords();
    }

    struct HWMInfo : GroupRecord {
        using GroupRecord::GroupRecord;
    };

    // The block of this family for the board library that is up.
    static Function* instance();

    // Appends one HWMInfo per capability group to items.
    virtual void createIPSOHWMPackage();

protected:
    FuncHWM();

    // A sensor's element {"n", "v", "max", "min", "asm": "r", "id", "sui":
    // "Chart"} appended to `array`; a failed append (or a missing element)
    // prints the group's "cap unable to append new value" message.
    void appendSensor(json_t* array, const SensorGroup& group, const char* name, double value,
                      uint32_t id);
    // Ends a group's build, taking the array over: without a sensor the array
    // is released and nothing is published; otherwise the array is checked
    // (except for the current group), wrapped as the group object and
    // recorded.
    void addGroup(voradrv::JsonHolder array, bool found, const SensorGroup& group);

    // True when `value` is a JSON real; otherwise prints "VORADRV HWM Get
    // Value: not a json real" and the caller answers STATUS_INVALID_VALUE.
    static bool isReal(json_t* value);

    // The first steps of a read through `idtoLibIDMap`: an unknown id answers
    // STATUS_NOT_FOUND (silently), a value that is not a real
    // STATUS_INVALID_VALUE, a failed library `read` STATUS_ERROR (the
    // library's own status is not passed on). STATUS_SUCCESS leaves the
    // library's reading in `raw` for the caller to convert.
    uint32_t readMapped(uint32_t id, json_t* value, uint32_t (*read)(unsigned int, unsigned int*),
                        unsigned int& raw);
};
