#include "Table.h"

#include <algorithm>

#include "Format.h"
#include "Printable.h"
#include "json/JsonPtr.h"

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

// A value wider than this (a long board text) runs past its column rather
// than pushing the limits of every other row off the screen.
constexpr size_t kWidestValue = 40;

std::string Padded(const std::string& shown, const std::string& plain, size_t width) {
    return shown + std::string(width - std::min(width, DisplayWidth(plain)), ' ');
}

std::string AccessText(const std::string& access) {
    if (access == "rw") {
        return "";
    }
    return access == "r" ? "read-only" : access;
}

// "(min = 0.000 V, max = 50.000 V)" for a ranged number, as `sensors` shows
// limits; "" for anything else.
std::string Limits(const Item& item) {
    if (!item.ranged() || item.twoState() || item.type == JSON_STRING) {
        return "";
    }
    JsonPtr minimum = Own(json_real(*item.minimum));
    JsonPtr maximum = Own(json_real(*item.maximum));
    if (item.type == JSON_INTEGER) {
        minimum = Own(json_integer(static_cast<json_int_t>(*item.minimum)));
        maximum = Own(json_integer(static_cast<json_int_t>(*item.maximum)));
    }
    return "(min = " + DisplayValue(minimum.get(), item.unit) +
           ", max = " + DisplayValue(maximum.get(), item.unit) + ")";
}

// A GPIO pin's two rows, direction then level, as one: its number and name,
// both values, and which of them cannot be set.
struct Pin {
    const TableRow* direction;
    const TableRow* level;
};

bool PinAt(const std::vector<TableRow>& rows, size_t i, Pin& pin) {
    if (i + 1 >= rows.size()) {
        return false;
    }
    const Item& a = *rows[i].item;
    const Item& b = *rows[i + 1].item;
    if (a.block != "GPIO" || a.unit != "I/O" || b.unit != "H/L" || a.group != b.group ||
        (a.id & 0xFF) != (b.id & 0xFF)) {
        return false;
    }
    pin = {&rows[i], &rows[i + 1]};
    return true;
}

std::string PinMarks(const Pin& pin) {
    const bool fixed = pin.direction->item->access == "r";
    const bool readOnly = pin.level->item->access == "r";
    return fixed && readOnly ? "read-only" : fixed ? "fixed direction" : readOnly ? "level read-only" : "";
}

}  // namespace

size_t DisplayWidth(const std::string& text) {
    size_t width = 0;
    for (unsigned char c : text) {
        width += (c & 0xC0) != 0x80 ? 1 : 0;
    }
    return width;
}

std::vector<TableRow> TableRows(const std::vector<Reading>& readings) {
    std::vector<TableRow> rows;
    for (const Reading& reading : readings) {
        rows.push_back(TableRow{reading.item, ShownValue(reading), !reading.value, false, reading.alarm});
    }
    return rows;
}

std::vector<std::string> ItemTable(const std::vector<TableRow>& rows, const TableColumns& columns,
                                   const Style& style) {
    size_t idWidth = 0;
    size_t nameWidth = 0;
    size_t valueWidth = 0;
    size_t limitsWidth = 0;
    bool alarms = false;
    for (const TableRow& row : rows) {
        alarms = alarms || row.alarm;
        idWidth = std::max(idWidth, IdText(row.item->id).size());
        nameWidth = std::max(nameWidth, DisplayWidth(Printable(row.item->name)));
        if (columns.pins && row.item->block == "GPIO") {
            nameWidth = std::max(nameWidth, DisplayWidth(Printable(row.item->group)));
        }
        valueWidth = std::max(valueWidth, std::min(DisplayWidth(row.value), kWidestValue));
        limitsWidth = std::max(limitsWidth, DisplayWidth(Limits(*row.item)));
    }
    std::vector<std::string> lines;
    const Item* previous = nullptr;
    for (size_t i = 0; i < rows.size(); ++i) {
        const TableRow& row = rows[i];
        const Item& item = *row.item;
        if (previous == nullptr || previous->block != item.block) {
            lines.push_back(style.heading(item.block.empty() ? "Other items" : Printable(item.block)));
            previous = nullptr;
            Pin pin;
            if (columns.pins && PinAt(rows, i, pin)) {
                lines.push_back(style.dim("    pin  " + Padded("name", "name", nameWidth) + "  dir  level"));
            }
        }
        Pin pin;
        if (columns.pins && PinAt(rows, i, pin)) {
            const std::string number = std::to_string((item.id & 0xFF) - 1);
            std::string line = "    " + std::string(3 - std::min<size_t>(3, number.size()), ' ') +
                               number + "  " + Padded(Printable(item.group), Printable(item.group), nameWidth) + "  " +
                               Padded(pin.direction->value, pin.direction->value, 3) + "  " +
                               Padded(pin.level->value, pin.level->value, 5);
            const std::string marks = PinMarks(pin);
            line += pin.direction->alarm || pin.level->alarm ? "  " + style.failed("ALARM") : "";
            line += marks.empty() ? "" : "  " + style.dim(marks);
            line.erase(line.find_last_not_of(' ') + 1);
            lines.push_back(line);
            previous = pin.level->item;
            ++i;
            continue;
        }
        if (!item.group.empty() && (previous == nullptr || previous->group != item.group)) {
            lines.push_back("  " + style.subheading(Printable(item.group)));
        }
        previous = &item;

        std::string line = "    ";
        if (columns.id) {
            const std::string id = IdText(item.id);
            line += Padded(style.dim(id), id, idWidth) + "  ";
        }
        const std::string name = Printable(item.name);
        line += Padded(name, name, nameWidth) + "  ";
        const std::string value = row.failed    ? style.failed(row.value)
                                  : row.changed ? style.changed(row.value)
                                                : row.value;
        line += Padded(value, row.value, valueWidth);
        if (columns.changed) {
            line += row.changed ? " *" : "  ";
        }
        if (columns.limits && limitsWidth > 0) {
            const std::string limits = Limits(item);
            line += "  " + Padded(limits, limits, limitsWidth);
        }
        // After the limits, as `sensors` marks a reading outside them.
        if (alarms) {
            line += row.alarm ? "  " + style.failed("ALARM") : "       ";
        }
        if (columns.access) {
            std::string access = AccessText(item.access);
            if (!item.sharing.empty()) {
                std::string names;
                for (const std::string& other : item.sharing) {
                    names += (names.empty() ? "" : ", ") + Printable(other);
                }
                access += std::string(access.empty() ? "" : ", ") + "id shared with " + names;
            }
            line += access.empty() ? "" : "  " + style.dim(access);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    return lines;
}

std::string LimitsText(const Item& item) { return Limits(item); }

}  // namespace voractl
