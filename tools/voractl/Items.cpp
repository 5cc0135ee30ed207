#include "Items.h"

#include <cstdlib>

#include "Format.h"

namespace voractl {

namespace {

std::string Text(const json_t* object, const char* key) {
    const json_t* value = json_object_get(object, key);
    return json_is_string(value) ? json_string_value(value) : "";
}

void CollectGroup(const json_t* group, const std::string& block, const std::string& groupName,
                  std::vector<Item>& items) {
    const json_t* elements = json_object_get(group, "e");
    size_t i;
    const json_t* element;
    json_array_foreach(elements, i, element) {
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
        item.unit = json_object_get(element, "u") != nullptr ? Text(element, "u")
                                                             : Text(group, "bu");
        item.access = Text(element, "asm");
        items.push_back(item);
    }
}

}  // namespace

std::string Item::path() const {
    if (block.empty()) {
        return name;  // an id outside the document
    }
    return group.empty() ? block + "/" + name : block + "/" + group + "/" + name;
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

Item FindItem(const std::vector<Item>& items, const std::string& selector, const char* type) {
    if (selector.rfind("0x", 0) == 0 || selector.rfind("0X", 0) == 0) {
        char* end = nullptr;
        const unsigned long id = std::strtoul(selector.c_str(), &end, 16);
        if (selector.size() == 2 || *end != '\0' || id > 0xFFFFFFFFul) {
            throw ToolError("\"" + selector + "\" is not an item id", true);
        }
        for (const Item& item : items) {
            if (item.id == id) {
                return item;
            }
        }
        if (type == nullptr) {
            throw ToolError(selector + " is not an item of the capability document "
                            "(give --type to use it anyway)", true);
        }
        Item item;
        item.id = static_cast<uint32_t>(id);
        item.name = selector;
        item.type = ParseType(type);
        return item;
    }
    const Item* found = nullptr;
    std::string ids;
    for (const Item& item : items) {
        if (item.path() == selector) {
            ids += (ids.empty() ? "" : ", ") + IdText(item.id);
            if (found != nullptr) {
                throw ToolError("\"" + selector + "\" names more than one item (" + ids +
                                "...); use an id", true);
            }
            found = &item;
        }
    }
    if (found == nullptr) {
        throw ToolError("no item \"" + selector + "\" (see voractl list)", true);
    }
    Item item = *found;
    if (type != nullptr) {
        item.type = ParseType(type);
    }
    return item;
}

std::vector<Item> SelectItems(const std::vector<Item>& items,
                              const std::vector<std::string>& selectors) {
    std::vector<bool> chosen(items.size(), false);
    for (std::string selector : selectors) {
        const bool id = selector.rfind("0x", 0) == 0 || selector.rfind("0X", 0) == 0;
        bool any = false;
        for (size_t i = 0; i < items.size() && !id; ++i) {
            if (items[i].path() == selector) {
                chosen[i] = any = true;
            }
        }
        if (id || any) {
            // An id, or a path that more than one item has: FindItem says why.
            const Item found = FindItem(items, selector, nullptr);
            for (size_t i = 0; i < items.size(); ++i) {
                chosen[i] = chosen[i] || (items[i].id == found.id && items[i].path() == found.path());
            }
            continue;
        }
        while (!selector.empty() && selector.back() == '/') {
            selector.pop_back();
        }
        for (size_t i = 0; i < items.size(); ++i) {
            if (!selector.empty() && items[i].path().rfind(selector + "/", 0) == 0) {
                chosen[i] = any = true;
            }
        }
        if (!any) {
            throw ToolError("no item or group \"" + selector + "\" (see voractl list)", true);
        }
    }
    std::vector<Item> selected;
    for (size_t i = 0; i < items.size(); ++i) {
        if (chosen[i]) {
            selected.push_back(items[i]);
        }
    }
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
