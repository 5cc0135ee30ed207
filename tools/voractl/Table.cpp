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
    return "(min = " + DisplayValue(minimum.get(), item) +
           ", max = " + DisplayValue(maximum.get(), item) + ")";
}

// A GPIO pin's two rows, direction then level, as one: its number and name,
// both values, and which of them cannot be set.
struct Pin {
    const TableRow* direction = nullptr;
    const TableRow* level = nullptr;
};

bool PinAt(const std::vector<TableRow>& rows, size_t i, Pin& pin) {
    if (i + 1 >= rows.size()) {
        return false;
    }
    const Item& a = *rows[i].item;
    const Item& b = *rows[i + 1].item;
    if (!a.in(Block::Gpio) || !a.is(Quantity::Direction) || !b.is(Quantity::Level) || a.group != b.group ||
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

// "read-only", and the other names of a shared id.
std::string AccessMarks(const Item& item) {
    std::string marks = AccessText(item.access);
    if (!item.sharing.empty()) {
        std::string names;
        for (const std::string& other : item.sharing) {
            names += (names.empty() ? "" : ", ") + Printable(other);
        }
        marks += std::string(marks.empty() ? "" : ", ") + "id shared with " + names;
    }
    return marks;
}

// The widths of the table's columns, over all its rows.
struct Widths {
    size_t id = 0;
    size_t name = 0;
    size_t value = 0;
    size_t limits = 0;
    bool alarms = false;  // a column for the marks of alarms
};

Widths Measure(const std::vector<TableRow>& rows, const TableColumns& columns) {
    Widths widths;
    for (const TableRow& row : rows) {
        widths.alarms = widths.alarms || row.alarm;
        widths.id = std::max(widths.id, IdText(row.item->id).size());
        widths.name = std::max(widths.name, DisplayWidth(Printable(row.item->name)));
        if (columns.pins && row.item->in(Block::Gpio)) {
            widths.name = std::max(widths.name, DisplayWidth(Printable(row.item->group)));
        }
        widths.value = std::max(widths.value, std::min(DisplayWidth(row.value), kWidestValue));
        widths.limits = std::max(widths.limits, DisplayWidth(Limits(*row.item)));
    }
    return widths;
}

std::string Trimmed(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

// "      0  DI0    in   high   read-only": a pin as gpioinfo shows a line.
std::string PinLine(const Pin& pin, const Widths& widths, const Style& style) {
    const Item& item = *pin.direction->item;
    const std::string number = std::to_string((item.id & 0xFF) - 1);
    const std::string name = Printable(item.group);
    std::string line = "    " + std::string(3 - std::min<size_t>(3, number.size()), ' ') + number +
                       "  " + Padded(name, name, widths.name) + "  " +
                       Padded(pin.direction->value, pin.direction->value, 3) + "  " +
                       Padded(pin.level->value, pin.level->value, 5);
    const std::string marks = PinMarks(pin);
    line += pin.direction->alarm || pin.level->alarm ? "  " + style.failed("ALARM") : "";
    line += marks.empty() ? "" : "  " + style.dim(marks);
    return Trimmed(line);
}

// "    0x1020201  VCORE  1.050 V  (min = 0.000 V, max = 50.000 V)  read-only"
std::string ItemLine(const TableRow& row, const TableColumns& columns, const Widths& widths,
                     const Style& style) {
    const Item& item = *row.item;
    std::string line = "    ";
    if (columns.id) {
        const std::string id = IdText(item.id);
        line += Padded(style.dim(id), id, widths.id) + "  ";
    }
    const std::string name = Printable(item.name);
    line += Padded(name, name, widths.name) + "  ";
    const std::string value = row.failed    ? style.failed(row.value)
                              : row.changed ? style.changed(row.value)
                                            : row.value;
    line += Padded(value, row.value, widths.value);
    if (columns.changed) {
        line += row.changed ? " *" : "  ";
    }
    if (columns.limits && widths.limits > 0) {
        const std::string limits = Limits(item);
        line += "  " + Padded(limits, limits, widths.limits);
    }
    // After the limits, as `sensors` marks a reading outside them.
    if (widths.alarms) {
        line += row.alarm ? "  " + style.failed("ALARM") : "       ";
    }
    const std::string marks = columns.access ? AccessMarks(item) : "";
    line += marks.empty() ? "" : "  " + style.dim(marks);
    return Trimmed(line);
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
    const Widths widths = Measure(rows, columns);
    std::vector<std::string> lines;
    const Item* previous = nullptr;
    for (size_t i = 0; i < rows.size(); ++i) {
        const Item& item = *rows[i].item;
        Pin pin;
        const bool pinRow = columns.pins && PinAt(rows, i, pin);
        if (previous == nullptr || previous->block != item.block) {
            lines.push_back(style.heading(item.block.empty() ? "Other items" : Printable(item.block)));
            previous = nullptr;
            if (pinRow) {
                lines.push_back(style.dim("    pin  " + Padded("name", "name", widths.name) + "  dir  level"));
            }
        }
        if (pinRow) {
            lines.push_back(PinLine(pin, widths, style));
            previous = pin.level->item;
            ++i;
            continue;
        }
        if (!item.group.empty() && (previous == nullptr || previous->group != item.group)) {
            lines.push_back("  " + style.subheading(Printable(item.group)));
        }
        previous = &item;
        lines.push_back(ItemLine(rows[i], columns, widths, style));
    }
    return lines;
}

std::string LimitsText(const Item& item) { return Limits(item); }

}  // namespace voractl
