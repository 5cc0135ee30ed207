// Vora3BKL: backlight on the third-generation library, whose display calls
// address the board's one screen. One panel, "VGA", with its brightness;
// writes also accept the screen on/off command, which is not published.
//
// No destructor of its own: FuncBKL releases the block package at
// uninitialise and GroupFamily deletes the records.
#pragma once

#include "function/FuncBKL.h"

class Vora3BKL : public FuncBKL {
public:
    Vora3BKL();

    // `value` must be a JSON integer (checked before the id); only the
    // brightness (kind 0x1050500) can be read.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // The brightness as its low 8 bits, or the on/off kind with 1 (screen
    // on) or 0 (screen off). The library's success 1 is answered as 0, any
    // other result is passed back as it is.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    void createIPSOBKLPackage() override;
};
