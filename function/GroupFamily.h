// GroupFamily: what the hardware-monitor, GPIO, backlight and network
// families share. The implementation's package builder appends one record
// per capability group; initialise then joins the records into the block
// package {"id": class id, "bn": block name, <record name>: group, ...}.
#pragma once

#include <vector>

#include "function/Function.h"
#include "function/GroupRecord.h"

class GroupFamily : public Function {
public:
    // Deletes the records, then releases the package.
    ~GroupFamily() override;

    uint32_t VoraIoTUninitialize() override;
    uint32_t VoraIoTGetMDCapability(json_t* capability) override;
    uint32_t VoraIoTSetMDEventHandler(VoraIoTEventHandler handler) override;

protected:
    // `capabilityMessage`: printed when a capability merge fails.
    GroupFamily(uint32_t blockID, std::string name, const char* capabilityMessage);

    // Joins the records the family's package builder (slot 9, run by the
    // family's initialise) left in `items` into the block package.
    uint32_t joinRecords();

    std::vector<GroupRecord*> items;
    json_t* package = nullptr;

private:
    const char* capabilityMessage_;
};
