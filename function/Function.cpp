#include "Function.h"

Function::Function(uint32_t blockID, std::string name) : blockID(blockID), name(std::move(name)) {}

Function::~Function() = default;

json_t* Function::IPSO_Capability_Packager(json_t const* e, char const* bn, char const* bu, int bt,
                                           int ver, int id) {
    // "o" hands the array's reference to the new object; jansson releases it
    // when packing fails.
    return json_pack("{s:o, s:s, s:i, s:s, s:i, s:i}", "e", const_cast<json_t*>(e), "bn", bn,
                     "bt", bt, "bu", bu, "ver", ver, "id", id);
}

json_t* Function::IPSO_Data_Packager(json_t const* e, char const* bn, int id) {
    return json_pack("{s:o, s:s, s:i}", "e", const_cast<json_t*>(e), "bn", bn, "id", id);
}

uint32_t Function::getClassID() { return blockID & 0xF0000u; }

std::string Function::getName() { return name; }

const char* Function::getUIProperty(std::string access) {
    return access == "r" ? "label" : "TextBox";
}
