// eCtl2BKL: backlight on an Embedded API library. Up to three panels, named
// "Backlight 1".."Backlight 3", each published when its brightness can be
// read, with its on/off state and its brightness (0 to 100).
//
// The on/off item follows the library's convention on writes and not on
// reads, on purpose: writing 0 sends 0xFFFFFFFF (off) and anything else 0
// (on), while a read gives 1 for any non-zero library value (off) and 0 for
// 0 (on).
#pragma once

#include "function/FuncBKL.h"

class eCtl2BKL : public FuncBKL {
public:
    eCtl2BKL();

    // `value` must be a JSON integer.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Passes the brightness to the library unchecked and the on/off state
    // mapped as above, written even when unchanged; returns the library's
    // status.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    void createIPSOBKLPackage() override;
};
