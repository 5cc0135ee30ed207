// eCtl2INFO: platform information on an Embedded API library. Five board
// values, seven board strings and three versions, all read-only; no customer
// strings. Strings the board answers with "Unknown" are not published, and a
// trailing line feed is dropped; reads go to the library every time.
#pragma once

#include "function/FuncINFO.h"

class eCtl2INFO : public FuncINFO {
public:
    eCtl2INFO();

    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Nothing is writable: always STATUS_UNSUPPORTED.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    // Board values, board strings, versions, in this order; a group that
    // fails does not stop the next.
    void createIPSOInfoPackage(json_t* array) override;

    // Each appends its group and returns 0 (something found), 1 (nothing)
    // or -1 (a packing or appending failure ended the group). A board string
    // too long for the 32-byte build buffer is not published but counts as
    // found.
    virtual int getValueInfo(json_t* array);
    virtual int getStringInfo(json_t* array);
    virtual int getVersion(json_t* array);
};
