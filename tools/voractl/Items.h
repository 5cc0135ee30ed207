// The items of a capability document, and finding one by id or path.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <string>
#include <vector>

namespace voractl {

struct Item {
    uint32_t id = 0;
    std::string block;   // "Hardware Monitor"
    std::string group;   // "Voltage"; empty for the platform information
    std::string name;    // "VCORE"
    std::string key;     // value key of the element: "v", "sv" or "bv"
    json_type type = JSON_INTEGER;  // JSON type the module reads and writes
    std::string unit;    // the element's "u", else its group's "bu"
    std::string access;  // "r", "rw", "N/A"

    // "Block/Group/Name", or "Block/Name" without a group.
    std::string path() const;
};

// Every element of every group of every block, in document order.
std::vector<Item> CollectItems(const json_t* document);

// The item `selector` names: a hexadecimal id ("0x1020201") or an exact path.
// An unknown or ambiguous selector throws a usage ToolError, except an id the
// document does not publish when `type` is given: that id is read as is.
Item FindItem(const std::vector<Item>& items, const std::string& selector, const char* type);

// The items `selectors` name, in document order and each once: an id or exact
// path names one item, else a selector is a block or group ("Hardware Monitor",
// "Hardware Monitor/Voltage") and names every item under it. A selector that
// names nothing throws a usage ToolError.
std::vector<Item> SelectItems(const std::vector<Item>& items,
                              const std::vector<std::string>& selectors);

// The JSON type named by --type ("int", "real", "string"); throws otherwise.
json_type ParseType(const std::string& name);

// A fresh JSON value of `type` to read into.
json_t* EmptyValue(json_type type);

}  // namespace voractl
