// eCtl2HWM: the hardware monitor on an Embedded API library. Voltages,
// temperatures, fan speeds and the one current sensor are found through the
// library's capability answer and published under fixed names. No case-open
// group.
//
// Two things differ from the other libraries on purpose: temperatures are
// published as the library's raw number (tenths of a kelvin), and voltage
// item ids depend on the slot alone, so the four voltage blocks share the ids
// 0x1020201..0x1020204 and a read reaches the last block found for the slot.
#pragma once

#include "function/FuncHWM.h"

class eCtl2HWM : public FuncHWM {
public:
    eCtl2HWM();

    // `value` must be a JSON real; it is set to a fresh reading.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Sensors cannot be written: always STATUS_UNSUPPORTED.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    // Builds the groups in the order Voltage, Temperature, Fan Speed,
    // Current; a group without a sensor is left out.
    void createIPSOHWMPackage() override;
    virtual void createIPSOVoltPackage();
    virtual void createIPSOTempPackage();
    virtual void createIPSOFanPackage();
    virtual void createIPSOCurrentPackage();

private:
    // Builds group `index` of the library's group table (eCtl2HWM.cpp).
    void buildGroup(int index);
};
