// Function: the abstract block every function block derives from. It carries
// the block's identity (block id and name), the map from published item ids
// to the board library's own ids, and the JSON packaging every block uses.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <map>
#include <string>

#include "voradrv.h"

// Base time ("bt") of every capability group: 2010-06-08 18:01:16 UTC.
constexpr int kBaseTime = 1276020076;
// Layout version ("ver") of every capability group.
constexpr int kLayoutVersion = 1;

class Function {
public:
    Function(uint32_t blockID, std::string name);
    virtual ~Function();
    Function(const Function&) = delete;
    Function& operator=(const Function&) = delete;

    // Builds the block's capability package.
    virtual uint32_t VoraIoTInitialize() = 0;
    virtual uint32_t VoraIoTUninitialize() = 0;
    // Merges the block's capability into the caller's object.
    virtual uint32_t VoraIoTGetMDCapability(json_t* capability) = 0;
    virtual uint32_t VoraIoTSetMDEventHandler(VoraIoTEventHandler handler) = 0;
    virtual uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) = 0;
    virtual uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) = 0;

    // A group object {"e", "bn", "bt", "bu", "ver", "id"}. Note the argument
    // order (bn, bu, bt) differs from the key order (bn, bt, bu). Takes over
    // the reference of `e` whatever the outcome; null when packing fails.
    json_t* IPSO_Capability_Packager(json_t const* e, char const* bn, char const* bu, int bt,
                                     int ver, int id);
    // A data object {"e", "bn", "id"}; takes over `e` like the above.
    json_t* IPSO_Data_Packager(json_t const* e, char const* bn, int id);

    // Block id AND 0xF0000: the class bits the module routes by.
    uint32_t getClassID();
    std::string getName();
    // "label" for the access mode exactly "r", "TextBox" for anything else.
    const char* getUIProperty(std::string access);

protected:
    uint32_t blockID;
    std::string name;
    // Published item id -> the board library's id for that item.
    std::map<uint32_t, uint32_t> idtoLibIDMap;
};
