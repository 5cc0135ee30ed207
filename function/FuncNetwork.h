// FuncNetwork: the out-of-band management network family. It exists only with the fourth-generation library.
#pragma once

#include "function/GroupFamily.h"

class FuncNetwork : public GroupFamily {
public:
    // Runs the package builder, then joins its records into the package.
    uint32_t VoraIoTInitialize() override {
        createIPSONetworkPackage();
        return joinRecords();
    }

    struct Network : GroupRecord {
        using GroupRecord::GroupRecord;
    };

    // The block of this family for the board library that is up.
    static Function* instance();

    // Appends one Network per capability group to items.
    virtual void createIPSONetworkPackage();

protected:
    FuncNetwork();
};
