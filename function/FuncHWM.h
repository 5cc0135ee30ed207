// FuncHWM: the hardware-monitor family, one group per sensor kind.
#pragma once

#include "function/GroupFamily.h"

class FuncHWM : public GroupFamily {
public:
    struct HWMInfo : GroupRecord {
        using GroupRecord::GroupRecord;
    };

    // The block of this family for the board library that is up.
    static Function* instance();

    // Appends one HWMInfo per capability group to items.
    virtual void createIPSOHWMPackage();

protected:
    FuncHWM();

private:
    void buildPackage() override { createIPSOHWMPackage(); }
};
