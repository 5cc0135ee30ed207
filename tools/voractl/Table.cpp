#include "Table.h"

#include <algorithm>
#include <map>

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
std::string Limits(const Item& item, bool bare = false, bool libraryUnit = false) {
    if (!item.ranged() || item.twoState() || item.type == JSON_STRING) {
        return "";
    }
    return "(min = " + LimitText(item, *item.minimum, bare, libraryUnit) +
           ", max = " + LimitText(item, *item.maximum, bare, libraryUnit) + ")";
}

std::string Limits(const TableRow& row) { return Limits(*row.item, row.bare, row.libraryUnit); }

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

// The widths of the table's columns, over the rows they are measured on.
struct Widths {
    size_t id = 0;
    size_t name = 0;
    size_t value = 0;
    size_t limits = 0;
    bool alarms = false;  // a column for the marks of alarms
};

// The widest name a row gets in `width` columns, leaving room for a value:
// longer ones are shortened with "…" (values never are).
size_t NameRoom(size_t width) {
    constexpr size_t kBeforeName = 4 + 9 + 2;
    constexpr size_t kForValue = 2 + 24;
    return width > kBeforeName + kForValue + 12 ? width - kBeforeName - kForValue : 12;
}

void Measure(const TableRow& row, const TableColumns& columns, Widths& widths) {
    widths.alarms = widths.alarms || row.alarm;
    widths.id = std::max(widths.id, IdText(row.item->id).size());
    size_t name = DisplayWidth(Printable(row.item->name));
    if (columns.pins && row.item->in(Block::Gpio)) {
        name = std::max(name, DisplayWidth(Printable(row.item->group)));
    }
    widths.name = std::max(widths.name, std::min(name, NameRoom(columns.width)));
    widths.value = std::max(widths.value, std::min(DisplayWidth(row.value), kWidestValue));
    widths.limits = std::max(widths.limits, DisplayWidth(Limits(row)));
}

// What a row's columns are measured with when the table does not fit as a
// whole: a pin with the other pins, any other item with its group, as
// `sensors` aligns each chip's readings by themselves.
std::string Segment(const Item& item, const TableColumns& columns) {
    return columns.pins && item.in(Block::Gpio) ? item.block : item.groupPath();
}

// The widths of each row: the whole table's, or with `grouped` its segment's.
std::vector<Widths> RowWidths(const std::vector<TableRow>& rows, const TableColumns& columns, bool grouped) {
    std::map<std::string, Widths> segments;
    for (const TableRow& row : rows) {
        Measure(row, columns, segments[grouped ? Segment(*row.item, columns) : ""]);
    }
    std::vector<Widths> widths;
    for (const TableRow& row : rows) {
        widths.push_back(segments[grouped ? Segment(*row.item, columns) : ""]);
    }
    return widths;
}

std::string Trimmed(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

// A column of a row after its name: what is shown, as wide as `plain`,
// padded to `column` when more follows on its line.
struct Cell {
    std::string shown;
    std::string plain;
    size_t column = 0;
    size_t gap = 2;  // blanks before it
};

// A row to lay out: what comes before its value, then its cells.
struct Laid {
    std::string head;
    size_t headWidth = 0;
    std::vector<Cell> cells;
};

Cell Plain(const std::string& text, size_t column = 0) { return {text, text, column}; }

// A cell too wide for any line, in pieces of at most `room` characters,
// broken at blanks and a word longer than that within it; colour is
// dropped so that no piece holds half an escape sequence.
std::vector<Cell> Pieces(const Cell& cell, size_t room) {
    static const size_t kEllipsis = std::string("…").size();
    std::vector<Cell> pieces;
    for (std::string rest : Wrapped("", cell.plain, room)) {
        while (DisplayWidth(rest) > room) {
            const std::string piece = Shortened(rest, room + 1);
            pieces.push_back(Plain(piece.substr(0, piece.size() - kEllipsis)));
            rest.erase(0, pieces.back().plain.size());
        }
        pieces.push_back(Plain(rest));
    }
    return pieces;
}

// Lays out `row` in lines of at most `width` characters: a cell that does
// not fit in its column follows the one before it, and one that does not
// fit at all goes on a further line, under the value.
void Flow(const Laid& row, size_t width, std::vector<std::string>& lines) {
    const size_t hang = row.headWidth + 16 <= width ? row.headWidth : 8;
    const size_t room = width > hang ? width - hang : 1;
    std::string line = row.head;
    size_t used = row.headWidth;
    size_t pad = 0;  // what the cell before still owes its column
    bool first = true;
    for (const Cell& whole : row.cells) {
        const std::vector<Cell> cells = DisplayWidth(whole.plain) > room ? Pieces(whole, room) : std::vector<Cell>{whole};
        for (const Cell& cell : cells) {
            const size_t wide = DisplayWidth(cell.plain);
            if (wide == 0 && !first) {
                pad += cell.gap + cell.column;  // an empty column: only its width
                continue;
            }
            size_t gap = first ? 0 : cell.gap + pad;
            // Out of its column rather than onto a line of its own.
            gap = used + gap + wide > width && !first ? cell.gap : gap;
            if (used + gap + wide > width && used > hang) {
                lines.push_back(Trimmed(line));
                line = std::string(hang, ' ');
                used = hang;
                gap = 0;
            }
            line += std::string(gap, ' ') + cell.shown;
            used += gap + wide;
            pad = cell.column - std::min(cell.column, wide);
            first = false;
        }
    }
    lines.push_back(Trimmed(line));
}

// "      0  DI0    in   high   read-only": a pin as gpioinfo shows a line.
Laid PinRow(const Pin& pin, const Widths& widths, const Style& style) {
    const Item& item = *pin.direction->item;
    const std::string number = std::to_string((item.id & 0xFF) - 1);
    const std::string name = Shortened(Printable(item.group), widths.name);
    Laid row;
    row.head = "    " + std::string(3 - std::min<size_t>(3, number.size()), ' ') + number + "  " +
               Padded(name, name, widths.name) + "  ";
    row.headWidth = 4 + std::max<size_t>(3, number.size()) + 2 + widths.name + 2;
    row.cells = {Plain(pin.direction->value, 3), Plain(pin.level->value, 5)};
    if (pin.direction->alarm || pin.level->alarm) {
        row.cells.push_back({style.failed("ALARM"), "ALARM"});
    }
    const std::string marks = PinMarks(pin);
    if (!marks.empty()) {
        row.cells.push_back({style.dim(marks), marks});
    }
    return row;
}

// "    0x1020201  VCORE  " before the cells of an item's row.
void ItemHead(const Item& item, const TableColumns& columns, const Widths& widths, const Style& style,
              Laid& laid) {
    laid.head = "    ";
    laid.headWidth = 4;
    if (columns.id) {
        const std::string id = IdText(item.id);
        laid.head += Padded(style.dim(id), id, widths.id) + "  ";
        laid.headWidth += widths.id + 2;
    }
    const std::string name = Shortened(Printable(item.name), widths.name);
    laid.head += Padded(name, name, widths.name) + "  ";
    laid.headWidth += widths.name + 2;
}

// "    0x1020201  VCORE  1.050 V  (min = 0.000 V, max = 50.000 V)  read-only"
Laid ItemRow(const TableRow& row, const TableColumns& columns, const Widths& widths, const Style& style) {
    const Item& item = *row.item;
    Laid laid;
    ItemHead(item, columns, widths, style, laid);
    const std::string value = row.failed    ? style.failed(row.value)
                              : row.changed ? style.changed(row.value)
                                            : row.value;
    const std::string mark = columns.changed ? (row.changed ? " *" : "  ") : "";
    laid.cells.push_back({value + mark, row.value + mark, widths.value + mark.size(), 0});
    if (columns.limits && widths.limits > 0) {
        laid.cells.push_back(Plain(Limits(row), widths.limits));
    }
    // After the limits, as `sensors` marks a reading outside them.
    if (widths.alarms) {
        laid.cells.push_back(row.alarm ? Cell{style.failed("ALARM"), "ALARM", 5} : Plain("", 5));
    }
    const std::string marks = columns.access ? AccessMarks(item) : "";
    if (!marks.empty()) {
        laid.cells.push_back({style.dim(marks), marks});
    }
    return laid;
}

// The headings above the row at `i`: its block's (and the pins' column
// names), or its group's.
void Headings(const std::vector<TableRow>& rows, size_t i, const Item* previous, bool pinRow,
              const Widths& widths, const Style& style, std::vector<std::string>& lines) {
    const Item& item = *rows[i].item;
    if (previous == nullptr || previous->block != item.block) {
        lines.push_back(style.heading(item.block.empty() ? "Other items" : Printable(item.block)));
        previous = nullptr;
        if (pinRow) {
            lines.push_back(style.dim("    pin  " + Padded("name", "name", widths.name) + "  dir  level"));
        }
    }
    if (!pinRow && !item.group.empty() && (previous == nullptr || previous->group != item.group)) {
        lines.push_back("  " + style.subheading(Printable(item.group)));
    }
}

// The table's lines with each row's widths; false when a row takes more
// than one line.
bool Render(const std::vector<TableRow>& rows, const TableColumns& columns, const Style& style,
            const std::vector<Widths>& widths, std::vector<std::string>& lines) {
    const Item* previous = nullptr;
    bool fits = true;
    for (size_t i = 0; i < rows.size(); ++i) {
        Pin pin;
        const bool pinRow = columns.pins && PinAt(rows, i, pin);
        Headings(rows, i, previous, pinRow, widths[i], style, lines);
        const size_t before = lines.size();
        Flow(pinRow ? PinRow(pin, widths[i], style) : ItemRow(rows[i], columns, widths[i], style),
             columns.width, lines);
        fits = fits && lines.size() == before + 1;
        previous = pinRow ? pin.level->item : rows[i].item;
        i += pinRow ? 1 : 0;
    }
    return fits;
}

}  // namespace

std::vector<TableRow> TableRows(const std::vector<Reading>& readings) {
    std::vector<TableRow> rows;
    for (const Reading& reading : readings) {
        rows.push_back(TableRow{reading.item, ShownValue(reading), !reading.value, false, reading.alarm,
                                reading.bare, reading.libraryUnit});
    }
    return rows;
}

std::vector<std::string> ItemTable(const std::vector<TableRow>& rows, const TableColumns& columns,
                                   const Style& style) {
    std::vector<std::string> lines;
    if (!Render(rows, columns, style, RowWidths(rows, columns, false), lines)) {
        lines.clear();
        Render(rows, columns, style, RowWidths(rows, columns, true), lines);
    }
    return lines;
}

std::string LimitText(const Item& item, double limit, bool bare, bool libraryUnit) {
    const Conversion& conversion = item.kind().conversion;
    if (bare && libraryUnit && conversion.toLibrary != nullptr) {
        limit = conversion.toLibrary(limit);
    }
    const JsonPtr value = Own(item.type == JSON_INTEGER || (bare && libraryUnit)
                                  ? json_integer(static_cast<json_int_t>(limit))
                                  : json_real(limit));
    return bare ? ValueText(value.get()) : DisplayValue(value.get(), item);
}

std::string LimitsText(const Item& item, bool bare, bool libraryUnit) {
    return Limits(item, bare, libraryUnit);
}

}  // namespace voractl
