// The items of a capability document, and finding them by what a person
// types: an id, a path, or the trailing parts of a path.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Kinds.h"

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
    std::optional<double> minimum;  // the element's published "min" and "max"
    std::optional<double> maximum;
    // Other elements of the group published with the same id (sensors in
    // one slot of different blocks): the module reads one of them, the last.
    std::vector<std::string> sharing;

    // "Block/Group/Name", or "Block/Name" without a group.
    std::string path() const;
    // "Block/Group", or "Block".
    std::string groupPath() const;
    bool writable() const { return access != "r"; }
    // The kind of an on/off, high/low or in/out item (or of a two-state
    // value of no known kind); null for any other item.
    const TwoStateKind* twoStateKind() const;
    bool twoState() const { return twoStateKind() != nullptr; }
    // The published limits, when they make a range (min <= max).
    bool ranged() const { return minimum && maximum && *minimum <= *maximum; }
    // True when `value` lies outside the published range (what `sensors`
    // calls an alarm); the one test behind every mark of an alarm and every
    // refusal of a write out of range.
    bool outside(double value) const {
        return ranged() && !(value >= *minimum && value <= *maximum);
    }
};

// Every element of every block, in document order; elements of one group
// published with one id are one item, named after the last of them.
std::vector<Item> CollectItems(const json_t* document);

// An item id typed as "0x1020201" or "16908801"; none when `text` is no id.
std::optional<uint32_t> ParseId(const std::string& text);

// What a selector names: items, or the items of a block or group.
struct Selection {
    std::vector<Item> items;
    bool group = false;  // a block or group was named
};

// Resolves `selector`: an id; a path, whole or by its trailing parts
// ("VCORE", "DI0/Level", "Voltage") when they name one item, or else one
// block or group; with `groups` false, items only. An id the document does
// not publish is an item only with `type` given. Throws a usage ToolError
// for a selector that names nothing, or more than one thing (listing them).
Selection Select(const std::vector<Item>& items, const std::string& selector, bool groups,
                 const char* type = nullptr);

// The items `selectors` name, in document order and each once.
std::vector<Item> SelectAll(const std::vector<Item>& items, const std::vector<std::string>& selectors,
                            const char* type = nullptr);

// The JSON type named by --type ("int", "real", "string"); throws otherwise.
json_type ParseType(const std::string& name);

// A fresh JSON value of `type` to read into.
json_t* EmptyValue(json_type type);

}  // namespace voractl
