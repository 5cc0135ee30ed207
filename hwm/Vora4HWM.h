// Vora4HWM: the hardware monitor on the fourth-generation library.
// Temperatures, voltages, fan speeds, currents and case switches are found
// by asking each possible sensor for its value, named by the library (or a
// default name) and published in physical units; reads go to the library.
#pragma once

#include "function/FuncHWM.h"

class Vora4HWM : public FuncHWM {
public:
    Vora4HWM();

    // `value` must be a JSON real; it is set to the sensor's value now.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // Sensors cannot be written: always STATUS_UNSUPPORTED.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    // Builds the groups in the order Voltage, Temperature, Fan Speed,
    // Current, Case Open; a group without a sensor is left out.
    void createIPSOHWMPackage() override;
    virtual void createIPSOVoltPackage();
    virtual void createIPSOTempPackage();
    virtual void createIPSOFanPackage();
    virtual void createIPSOCurrentPackage();
    virtual void createIPSOCaseOpenPackage();

private:
    // Builds group `index` of the library's group table (Vora4HWM.cpp).
    void buildGroup(int index);
};
