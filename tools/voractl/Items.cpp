#include "Items.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "Format.h"
#include "Printable.h"
#include "ToolError.h"

namespace voractl {

namespace {

std::string Text(const json_t* object, const char* key) {
    const json_t* value = json_object_get(object, key);
    return json_is_string(value) ? json_string_value(value) : "";
}

std::optional<double> Number(const json_t* object, const char* key) {
    const json_t* value = json_object_get(object, key);
    return json_is_number(value) ? std::optional<double>(json_number_value(value)) : std::nullopt;
}

// The item an element of `group` publishes.
Item ElementItem(const json_t* element, const json_t* group, const std::string& block,
                 const std::string& groupName) {
    Item item;
    item.id = static_cast<uint32_t>(json_integer_value(json_object_get(element, "id")));
    item.block = block;
    item.group = groupName;
    item.name = Text(element, "n");
    for (const char* key : {"v", "sv", "bv"}) {
        const json_t* value = json_object_get(element, key);
        if (value != nullptr) {
            item.key = key;
            // Two-state values are read and written as integers.
            item.type = json_is_real(value)     ? JSON_REAL
                        : json_is_string(value) ? JSON_STRING
                                                : JSON_INTEGER;
            break;
        }
    }
    item.unit = json_object_get(element, "u") != nullptr ? Text(element, "u") : Text(group, "bu");
    item.unitKind = &UnitKindOf(item.unit);
    item.access = Text(element, "asm");
    item.minimum = Number(element, "min");
    item.maximum = Number(element, "max");
    return item;
}

void CollectGroup(const json_t* group, const std::string& block, const std::string& groupName,
                  std::vector<Item>& items) {
    const size_t first = items.size();
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(group, "e"), i, element) {
        Item item = ElementItem(element, group, block, groupName);
        // One id published twice in a group is one item: the module can read
        // only one of them, the last.
        bool merged = false;
        for (size_t k = first; k < items.size() && !merged; ++k) {
            if (items[k].id == item.id) {
                item.sharing = items[k].sharing;
                item.sharing.push_back(items[k].name);
                items[k] = item;
                merged = true;
            }
        }
        if (!merged) {
            items.push_back(item);
        }
    }
}

bool EndsWithPart(const std::string& path, const std::string& tail) {
    return path == tail || (path.size() > tail.size() &&
                            path.compare(path.size() - tail.size(), tail.size(), tail) == 0 &&
                            path[path.size() - tail.size() - 1] == '/');
}

// The item of an id; one outside the document only when a type to use it
// with was given.
Selection SelectId(const std::vector<Item>& items, uint32_t id, bool typed) {
    for (const Item& item : items) {
        if (item.id == id) {
            return {{item}, false};
        }
    }
    if (!typed) {
        throw ToolError(IdText(id) + " is not an item of the capability document "
                        "(give --type to use it anyway)", true);
    }
    Item item;
    item.id = id;
    item.name = IdText(id);
    item.access = "N/A";
    return {{item}, false};
}

// What a selector fits: items, and (when they count) blocks and groups.
struct Matches {
    std::vector<const Item*> items;
    std::vector<std::string> groups;
};

// The items, and with `groups` the blocks and groups, whose path is
// `wanted` (`whole`) or ends in it; an item's other names count, and so
// does a name typed as voractl shows it, escaped.
Matches Match(const std::vector<Item>& items, const std::string& wanted, bool whole, bool groups) {
    const auto fits = [&](const std::string& path) {
        return whole ? path == wanted || Printable(path) == wanted
                     : EndsWithPart(path, wanted) || EndsWithPart(Printable(path), wanted);
    };
    Matches matches;
    for (const Item& item : items) {
        bool match = fits(item.path());
        for (const std::string& other : item.sharing) {
            match = match || fits(item.groupPath() + "/" + other);
        }
        if (match) {
            matches.items.push_back(&item);
        }
        for (const std::string& path : {item.block, item.groupPath()}) {
            if (groups && fits(path) &&
                std::find(matches.groups.begin(), matches.groups.end(), path) == matches.groups.end()) {
                matches.groups.push_back(path);
            }
        }
    }
    return matches;
}

// The items of the block or group at `path`.
Selection GroupSelection(const std::vector<Item>& items, const std::string& path) {
    Selection selection{{}, true};
    for (const Item& item : items) {
        if (item.block == path || item.groupPath() == path) {
            selection.items.push_back(item);
        }
    }
    return selection;
}

[[noreturn]] void Ambiguous(const std::string& selector, const Matches& matches) {
    std::string candidates;
    for (const Item* item : matches.items) {
        candidates += "\n  " + Printable(item->path()) + " (" + IdText(item->id) + ")";
    }
    for (const std::string& path : matches.groups) {
        candidates += "\n  " + Printable(path) + "/";
    }
    throw ToolError("\"" + Printable(selector) + "\" names more than one " +
                    (matches.groups.empty() ? "item" : "thing") + "; one of:" + candidates, true);
}

}  // namespace

std::string Item::path() const {
    if (block.empty()) {
        return name;  // an id outside the document
    }
    return group.empty() ? block + "/" + name : block + "/" + group + "/" + name;
}

std::string Item::groupPath() const { return group.empty() ? block : block + "/" + group; }

const TwoStateKind* Item::twoStateKind() const {
    const TwoStateKind* states = kind().twoState();
    return states == nullptr && key == "bv" ? &kPlainTwoState : states;
}

const Item* BoardNameItem(const std::vector<Item>& items) {
    for (const Item& item : items) {
        if (item.in(Block::Platform) && item.type == JSON_STRING && item.name == "Board name") {
            return &item;
        }
    }
    return nullptr;
}

std::vector<Item> CollectItems(const json_t* document) {
    std::vector<Item> items;
    const char* blockName;
    const json_t* block;
    json_object_foreach(const_cast<json_t*>(document), blockName, block) {
        if (json_object_get(block, "e") != nullptr) {
            // The platform information is a single group without a name.
            CollectGroup(block, blockName, "", items);
            continue;
        }
        const char* groupName;
        const json_t* group;
        json_object_foreach(const_cast<json_t*>(block), groupName, group) {
            if (json_is_object(group)) {
                CollectGroup(group, blockName, groupName, items);
            }
        }
    }
    return items;
}

std::optional<uint32_t> ParseId(const std::string& text) {
    const bool hex = text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0;
    const std::string digits = hex ? text.substr(2) : text;
    if (digits.empty() || digits.find_first_not_of(hex ? "0123456789abcdefABCDEF" : "0123456789") !=
                              std::string::npos) {
        return std::nullopt;
    }
    errno = 0;
    const unsigned long long id = std::strtoull(digits.c_str(), nullptr, hex ? 16 : 10);
    if (errno != 0 || id > 0xFFFFFFFFull) {
        return std::nullopt;
    }
    return static_cast<uint32_t>(id);
}

namespace {

// The number a pin goes by, as `list` shows it and gpioget takes a line's
// offset: its items' last id byte, less one.
int PinNumber(const Item& item) { return static_cast<int>(item.id & 0xFF) - 1; }

// The block path of GPIO pin `text` ("0" to "255", in decimal, as `list`
// shows pins); none for any other text. Item ids start at 0x1000000, so
// no id is read as a pin.
std::optional<std::string> PinPath(const std::vector<Item>& items, const std::string& text) {
    if (text.empty() || text.size() > 3 || text.find_first_not_of("0123456789") != std::string::npos ||
        std::stoi(text) > 255) {
        return std::nullopt;
    }
    for (const Item& item : items) {
        if (item.in(Block::Gpio) && !item.group.empty() && PinNumber(item) == std::stoi(text)) {
            return item.groupPath();
        }
    }
    throw ToolError("no GPIO pin " + text + " (see voractl list GPIO)", true);
}

// The level of a GPIO pin, when `items` are one pin's items; else null.
const Item* PinLevel(const std::vector<Item>& items) {
    const Item* level = nullptr;
    for (const Item& item : items) {
        if (!item.in(Block::Gpio) || item.group.empty() || item.groupPath() != items.front().groupPath()) {
            return nullptr;
        }
        level = item.is(Quantity::Level) ? &item : level;
    }
    return level;
}

const std::pair<const char*, json_type> kTypes[] = {
    {"int", JSON_INTEGER}, {"real", JSON_REAL}, {"string", JSON_STRING}};

}  // namespace

json_type ParseType(const std::string& name) {
    for (const auto& [word, type] : kTypes) {
        if (name == word) {
            return type;
        }
    }
    throw ToolError("--type must be int, real or string, not \"" + name + "\"", true);
}

const char* TypeName(json_type type) {
    for (const auto& [word, known] : kTypes) {
        if (type == known) {
            return word;
        }
    }
    return "int";
}

Selection Select(const std::vector<Item>& items, const std::string& selector, bool groups,
                 bool typed) {
    std::string wanted = selector;
    while (wanted.size() > 1 && wanted.back() == '/') {
        wanted.pop_back();
    }
    if (const std::optional<std::string> pin = groups ? PinPath(items, wanted) : std::nullopt) {
        return GroupSelection(items, *pin);
    }
    if (const std::optional<uint32_t> id = ParseId(wanted)) {
        return SelectId(items, *id, typed);
    }
    // Whole paths first, then trailing parts.
    for (const bool whole : {true, false}) {
        const Matches matches = Match(items, wanted, whole, groups);
        if (matches.items.size() == 1 && matches.groups.empty()) {
            return {{*matches.items.front()}, false};
        }
        if (matches.items.empty() && matches.groups.size() == 1) {
            return GroupSelection(items, matches.groups.front());
        }
        if (matches.items.size() + matches.groups.size() > 1) {
            Ambiguous(selector, matches);
        }
    }
    throw ToolError("no item" + std::string(groups ? " or group" : "") + " \"" + Printable(selector) +
                    "\" (see voractl list)", true);
}

Selection SelectValue(const std::vector<Item>& items, const std::string& selector, bool groups, bool typed) {
    PinPath(items, selector);  // a number that is no pin is said so
    Selection selection;
    try {
        selection = Select(items, selector, true, typed);
    } catch (const ToolError&) {
        if (groups) {
            throw;
        }
        return Select(items, selector, false, typed);  // the error of an item alone
    }
    if (const Item* level = selection.group ? PinLevel(selection.items) : nullptr) {
        return {{*level}, false};
    }
    // Not a pin: a group only where one is wanted, else the error for it.
    return selection.group && !groups ? Select(items, selector, false, typed) : selection;
}

std::vector<Item> SelectAll(const std::vector<Item>& items, const std::vector<std::string>& selectors,
                            bool typed) {
    std::vector<Item> outside;  // ids the document does not publish
    std::vector<bool> chosen(items.size(), false);
    for (const std::string& selector : selectors) {
        for (const Item& item : Select(items, selector, true, typed).items) {
            bool published = false;
            for (size_t i = 0; i < items.size(); ++i) {
                if (items[i].id == item.id && items[i].path() == item.path()) {
                    chosen[i] = published = true;
                }
            }
            if (!published) {
                outside.push_back(item);
            }
        }
    }
    std::vector<Item> selected;
    for (size_t i = 0; i < items.size(); ++i) {
        if (chosen[i]) {
            selected.push_back(items[i]);
        }
    }
    selected.insert(selected.end(), outside.begin(), outside.end());
    return selected;
}

json_t* EmptyValue(json_type type) {
    switch (type) {
        case JSON_REAL: return json_real(0.0);
        case JSON_STRING: return json_string("");
        default: return json_integer(0);
    }
}

}  // namespace voractl
