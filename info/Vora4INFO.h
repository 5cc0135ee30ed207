// Vora4INFO: platform information on the fourth-generation library. Board
// values, board strings, up to three customer strings and three versions,
// all read-only; reads go to the library every time.
#pragma once

#include "function/FuncINFO.h"

class Vora4INFO : public FuncINFO {
public:
    Vora4INFO();

    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Nothing is writable: always STATUS_UNSUPPORTED.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    // Board values, board strings, customer strings, versions, in this
    // order; a group that fails does not stop the next.
    void createIPSOInfoPackage(json_t* array) override;

    // Each appends its group and returns 0 (something appended), 1 (nothing)
    // or -1 (a packing or appending failure ended the group).
    virtual int getValueInfo(json_t* array);
    virtual int getCustomizeString(json_t* array);
    virtual int getStringInfo(json_t* array);
    virtual int getVersion(json_t* array);
};
