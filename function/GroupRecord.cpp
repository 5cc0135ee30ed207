#include "GroupRecord.h"

GroupRecord::GroupRecord(std::string name) : name(std::move(name)) {}

GroupRecord::~GroupRecord() {
    if (group != nullptr) {
        json_object_clear(group);
        json_decref(group);
    }
}
