// FuncGPIO: the GPIO family, one group per pin.
#pragma once

#include "function/GroupFamily.h"

class FuncGPIO : public GroupFamily {
public:
    struct GPIOPIN : GroupRecord {
        using GroupRecord::GroupRecord;
    };

    // The block of this family for the board library that is up.
    static Function* instance();

    // Appends one GPIOPIN per capability group to items.
    virtual void createIPSOGPIOPackage();

protected:
    FuncGPIO();

private:
    void buildPackage() override { createIPSOGPIOPackage(); }
};
