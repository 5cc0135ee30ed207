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

void CollectGroup(const json_t* group, const std::string& block, const std::string& groupName,
                  std::vector<Item>& items) {
    const size_t first = items.size();
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(group, "e"), i, element) {
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
        item.access = Text(element, "asm");
        item.minimum = Number(element, "min");
        item.maximum = Number(element, "max");
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

}  // namespace

std::string Item::path() const {
    if (block.empty()) {
        return name;  // an id outside the document
    }
    return group.empty() ? block + "/" + name : block + "/" + group + "/" + name;
}

std::string Item::groupPath() const { return group.empty() ? block : block + "/" + group; }

const TwoStateKind* Item::twoStateKind() const {
    const TwoStateKind* kind = TwoStateKindOf(unit);
    return kind == nullptr && key == "bv" ? &kPlainTwoState : kind;
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

json_type ParseType(const std::string& name) {
    if (name == "int") {
        return JSON_INTEGER;
    }
    if (name == "real") {
        return JSON_REAL;
    }
    if (name == "string") {
        return JSON_STRING;
    }
    throw ToolError("--type must be int, real or string, not \"" + name + "\"", true);
}

Selection Select(const std::vector<Item>& items, const std::string& selector, bool groups,
                 const char* type) {
    std::string wanted = selector;
    while (wanted.size() > 1 && wanted.back() == '/') {
        wanted.pop_back();
    }
    if (const std::optional<uint32_t> id = ParseId(wanted)) {
        for (const Item& item : items) {
            if (item.id == *id) {
                return {{item}, false};
            }
        }
        if (type == nullptr) {
            throw ToolError(IdText(*id) + " is not an item of the capability document "
                            "(give --type to use it anyway)", true);
        }
        Item item;
        item.id = *id;
        item.name = IdText(*id);
        item.access = "N/A";
        return {{item}, false};
    }
    // Whole paths first, then trailing parts; an item's other names count,
    // and so does a name typed as voractl shows it, escaped.
    for (const bool whole : {true, false}) {
        const auto fits = [&](const std::string& path) {
            return whole ? path == wanted || Printable(path) == wanted
                         : EndsWithPart(path, wanted) || EndsWithPart(Printable(path), wanted);
        };
        std::vector<const Item*> found;
        std::vector<std::string> groupsFound;
        for (const Item& item : items) {
            bool match = fits(item.path());
            for (const std::string& other : item.sharing) {
                match = match || fits(item.groupPath() + "/" + other);
            }
            if (match) {
                found.push_back(&item);
            }
            for (const std::string& path : {item.block, item.groupPath()}) {
                const bool named = fits(path);
                if (groups && named &&
                    std::find(groupsFound.begin(), groupsFound.end(), path) == groupsFound.end()) {
                    groupsFound.push_back(path);
                }
            }
        }
        if (found.size() == 1 && groupsFound.empty()) {
            return {{*found.front()}, false};
        }
        if (found.empty() && groupsFound.size() == 1) {
            Selection selection{{}, true};
            for (const Item& item : items) {
                if (item.block == groupsFound.front() || item.groupPath() == groupsFound.front()) {
                    selection.items.push_back(item);
                }
            }
            return selection;
        }
        if (found.size() + groupsFound.size() > 1) {
            std::string candidates;
            for (const Item* item : found) {
                candidates += "\n  " + Printable(item->path()) + " (" + IdText(item->id) + ")";
            }
            for (const std::string& path : groupsFound) {
                candidates += "\n  " + Printable(path) + "/";
            }
            throw ToolError("\"" + Printable(selector) + "\" names more than one " +
                            (groupsFound.empty() ? "item" : "thing") + "; one of:" + candidates,
                            true);
        }
    }
    throw ToolError("no item" + std::string(groups ? " or group" : "") + " \"" + Printable(selector) +
                    "\" (see voractl list)", true);
}

std::vector<Item> SelectAll(const std::vector<Item>& items, const std::vector<std::string>& selectors,
                            const char* type) {
    std::vector<Item> outside;  // ids the document does not publish
    std::vector<bool> chosen(items.size(), false);
    for (const std::string& selector : selectors) {
        for (const Item& item : Select(items, selector, true, type).items) {
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
