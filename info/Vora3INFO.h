// Vora3INFO: platform information on the third-generation library. The board
// name, the BIOS revision and the library's version are read once, while the
// capability is built, and kept in idtoStringValueMap; reads answer from
// there and never call the library.
#pragma once

#include "function/FuncINFO.h"

class Vora3INFO : public FuncINFO {
public:
    Vora3INFO();

    // `value` must be a JSON string. It is set to the text kept at build
    // time; an item the library did not offer reads as "".
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Nothing is writable: always STATUS_UNSUPPORTED.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    // Board name, BIOS revision and driver version, in this order. A text
    // the library does not offer is left out; an item that cannot be packed
    // or appended ends the build there.
    void createIPSOInfoPackage(json_t* array) override;
};
