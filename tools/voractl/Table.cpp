#include "Table.h"

#include <algorithm>

#include "Format.h"

namespace voractl {

namespace {

std::string Padded(const std::string& shown, const std::string& plain, size_t width) {
    return shown + std::string(width - std::min(width, DisplayWidth(plain)), ' ');
}

std::string AccessText(const std::string& access) {
    if (access == "rw") {
        return "";
    }
    return access == "r" ? "read-only" : access;
}

}  // namespace

size_t DisplayWidth(const std::string& text) {
    size_t width = 0;
    for (unsigned char c : text) {
        width += (c & 0xC0) != 0x80 ? 1 : 0;
    }
    return width;
}

std::vector<std::string> ItemTable(const std::vector<TableRow>& rows, const TableColumns& columns,
                                   const Style& style) {
    size_t idWidth = 0;
    size_t nameWidth = 0;
    size_t valueWidth = 0;
    for (const TableRow& row : rows) {
        idWidth = std::max(idWidth, IdText(row.item->id).size());
        nameWidth = std::max(nameWidth, DisplayWidth(row.item->name));
        valueWidth = std::max(valueWidth, DisplayWidth(row.value));
    }
    std::vector<std::string> lines;
    const Item* previous = nullptr;
    for (const TableRow& row : rows) {
        const Item& item = *row.item;
        if (previous == nullptr || previous->block != item.block) {
            lines.push_back(style.heading(item.block.empty() ? "Other items" : item.block));
            previous = nullptr;
        }
        if (!item.group.empty() && (previous == nullptr || previous->group != item.group)) {
            lines.push_back("  " + style.subheading(item.group));
        }
        previous = &item;

        std::string line = "    ";
        if (columns.id) {
            const std::string id = IdText(item.id);
            line += Padded(style.dim(id), id, idWidth) + "  ";
        }
        line += Padded(item.name, item.name, nameWidth) + "  ";
        const std::string value = row.failed    ? style.failed(row.value)
                                  : row.changed ? style.changed(row.value)
                                                : row.value;
        line += Padded(value, row.value, valueWidth);
        if (columns.changed) {
            line += row.changed ? " *" : "  ";
        }
        if (columns.access) {
            const std::string access = AccessText(item.access);
            line += access.empty() ? "" : "  " + style.dim(access);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    return lines;
}

}  // namespace voractl
