// FuncBKL: the backlight family, one group per display panel.
#pragma once

#include "function/GroupFamily.h"

class FuncBKL : public GroupFamily {
public:
    struct Backlight : GroupRecord {
        using GroupRecord::GroupRecord;
    };

    // The block of this family for the board library that is up.
    static Function* instance();

    // Appends one Backlight per capability group to items.
    virtual void createIPSOBKLPackage();

    // Unlike the other families, empties and releases the block package here.
    uint32_t VoraIoTUninitialize() override;

protected:
    FuncBKL();

private:
    void buildPackage() override { createIPSOBKLPackage(); }
};
