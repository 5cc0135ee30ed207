// Vora3HWM: the hardware monitor on the third-generation library. Voltages,
// temperatures and fan speeds are found through the library's support
// masks, one bit per sensor, and named from fixed tables. A read takes the
// sensor from the item id alone.
#pragma once

#include "function/FuncHWM.h"

class Vora3HWM : public FuncHWM {
public:
    Vora3HWM();

    // `value` must be a JSON real; it is set to a fresh reading of the
    // sensor whose bit the item number selects, published or not.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Sensors cannot be written: always STATUS_UNSUPPORTED.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    // Builds the groups in the order Voltage, Temperature, Fan Speed; a
    // group without a sensor is left out.
    void createIPSOHWMPackage() override;
    virtual void createIPSOVoltPackage();
    virtual void createIPSOTempPackage();
    virtual void createIPSOFanPackage();

private:
    // Builds group `index` of the library's group table (Vora3HWM.cpp).
    void buildGroup(int index);
};
