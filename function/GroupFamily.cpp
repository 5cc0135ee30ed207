#include "GroupFamily.h"

#include "function/Family.h"
#include "module/Status.h"

GroupFamily::GroupFamily(uint32_t blockID, std::string name, const char* capabilityMessage)
    : Function(blockID, std::move(name)), capabilityMessage_(capabilityMessage) {}

GroupFamily::~GroupFamily() {
    for (GroupRecord* record : items) {
        delete record;
    }
    if (package != nullptr) {
        json_decref(package);
    }
}

uint32_t GroupFamily::joinRecords() {
    if (items.empty()) {
        // Nothing to offer: no package, so the block gets no capability member.
        return STATUS_SUCCESS;
    }
    if (package != nullptr) {
        json_decref(package);
    }
    package = json_pack("{s:i, s:s}", "id", static_cast<int>(getClassID()), "bn", name.c_str());
    for (GroupRecord* record : items) {
        if (record->group != nullptr) {
            // The package takes a reference of its own; see GroupRecord.
            json_object_set(package, record->name.c_str(), record->group);
        }
    }
    return STATUS_SUCCESS;
}

uint32_t GroupFamily::VoraIoTUninitialize() { return STATUS_SUCCESS; }

uint32_t GroupFamily::VoraIoTGetMDCapability(json_t* capability) {
    return voradrv::MergeCapability(package, capability, capabilityMessage_);
}

uint32_t GroupFamily::VoraIoTSetMDEventHandler(VoraIoTEventHandler) { return STATUS_SUCCESS; }
