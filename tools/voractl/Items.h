// The items of a capability document, and finding them by what a person
// types: an id, a path, or the trailing parts of a path.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Kinds.h"
#include "voradrv.h"

namespace voractl {

// The blocks, by the class bits of their items' ids.
enum class Block : uint32_t {
    Platform = VORADRV_CLASS_INFO,
    HardwareMonitor = VORADRV_CLASS_HWM,
    Gpio = VORADRV_CLASS_GPIO,
    Backlight = VORADRV_CLASS_BKL,
    Network = VORADRV_CLASS_NETWORK,
};

struct Item {
    uint32_t id = 0;
    std::string block;   // "Hardware Monitor"
    std::string group;   // "Voltage"; empty for the platform information
    std::string name;    // "VCORE"
    std::string key;     // value key of the element: "v", "sv" or "bv"
    json_type type = JSON_INTEGER;  // JSON type the module reads and writes
    std::string unit;    // the element's "u", else its group's "bu"
    const UnitKind* unitKind = nullptr;  // the row of `unit`, when found
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
    // True for an item the document publishes in `block`.
    bool in(Block block) const {
        return !this->block.empty() && (id & VORADRV_ID_CLASS_MASK) == static_cast<uint32_t>(block);
    }
    // What the item's unit says its values are (its row, once found).
    const UnitKind& kind() const { return unitKind != nullptr ? *unitKind : UnitKindOf(unit); }
    bool is(Quantity quantity) const { return kind().quantity == quantity; }
    // The backlight's item that turns its panel on and off (named as its
    // block), beside the panel's other on/off items (its polarity).
    bool panelSwitch() const { return in(Block::Backlight) && is(Quantity::Switch) && name == "Backlight"; }
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

// The platform information's board name; null when the board publishes none.
const Item* BoardNameItem(const std::vector<Item>& items);

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
// block or group; with `groups`, a GPIO pin's number (0 to 255, in
// decimal) names its pin; with `groups` false, items only. An id the document does
// not publish is an item only with `typed` (a JSON type to use it with was
// given). Throws a usage ToolError for a selector that names nothing, or
// more than one thing (listing them).
Selection Select(const std::vector<Item>& items, const std::string& selector, bool groups,
                 bool typed = false);

// What `get` and `set` read or write for `selector`: as Select, except
// that a GPIO pin, named by its name ("DI0") or its number ("0", as `list`
// shows it), is its level, as gpioget and gpioset take a line.
Selection SelectValue(const std::vector<Item>& items, const std::string& selector, bool groups,
                      bool typed = false);

// The items `selectors` name, in document order and each once.
std::vector<Item> SelectAll(const std::vector<Item>& items, const std::vector<std::string>& selectors,
                            bool typed = false);

// The JSON type named by --type ("int", "real", "string"); throws otherwise.
json_type ParseType(const std::string& name);
// The name of a JSON type ParseType gives.
const char* TypeName(json_type type);

// A fresh JSON value of `type` to read into.
json_t* EmptyValue(json_type type);

}  // namespace voractl
