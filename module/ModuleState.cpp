#include "ModuleState.h"

std::vector<Function*> functions;
std::map<uint32_t, uint32_t> dispatchIDMap;
std::map<uint32_t, std::string> idtoStringValueMap;
json_t* jasonCapabilityPackage = nullptr;

int getFunctionIndex(uint32_t id) {
    const uint32_t classID = id & 0xF0000u;
    auto entry = dispatchIDMap.find(classID);
    if (entry == dispatchIDMap.end()) {
        return -1;
    }
    return static_cast<int>(entry->second);
}
