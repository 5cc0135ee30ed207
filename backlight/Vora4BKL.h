// Vora4BKL: backlight on the fourth-generation library. Up to three panels,
// each with the controls the library can read: brightness (with its range),
// frequency, polarity and on/off.
#pragma once

#include "function/FuncBKL.h"

class Vora4BKL : public FuncBKL {
public:
    Vora4BKL();

    // `value` must be a JSON integer.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Passes the integer's low 32 bits to the library unchecked, except that
    // on/off is not written when the panel is already in the state asked for.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    void createIPSOBKLPackage() override;
};
