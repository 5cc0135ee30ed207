// The module's global state: the block registry, the routing map and the
// capability document.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class Function;

// The blocks in fixed order: 0 platform information, 1 hardware monitor,
// 2 GPIO, 3 backlight, 4 network. An entry is null when the family has no
// block for the board library (the network block off the fourth generation);
// it keeps its place so the indices stay fixed. The module owns the blocks.
extern std::vector<Function*> functions;
// Class id (item id AND 0xF0000) -> index in `functions`.
extern std::map<uint32_t, uint32_t> dispatchIDMap;
// Text values of string items by item id; filled by the third-generation
// platform-information block.
extern std::map<uint32_t, std::string> idtoStringValueMap;
// The capability document: one member per block that offers a capability.
extern json_t* jasonCapabilityPackage;

// Index in `functions` of the block owning `id`'s class, or -1. Never
// inserts into the map.
int getFunctionIndex(uint32_t id);
