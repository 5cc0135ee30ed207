// A capability group of a block: its name (the member name in the block
// package) and its group object.
#pragma once

#include <jansson.h>

#include <string>

struct GroupRecord {
    explicit GroupRecord(std::string name);
    // Empties the group object and drops the record's reference to it.
    virtual ~GroupRecord();
    GroupRecord(const GroupRecord&) = delete;
    GroupRecord& operator=(const GroupRecord&) = delete;

    std::string name;
    // The record holds one reference of its own; the block package holds
    // another. So each holder releases exactly what it took, and a group the
    // package dropped (a later group of the same name replaces an earlier
    // one) stays valid until its record goes.
    json_t* group = nullptr;
};
