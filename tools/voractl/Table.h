// The items as a table grouped by block and group, the way `list` and
// `watch` show them to people, after `sensors` and `gpioinfo`:
//
//   Hardware Monitor
//     Voltage
//       0x1020201  VCORE  1.050 V  (min = 0.000 V, max = 50.000 V)  read-only
//       0x102020A  VN50   -5.012 V (min = 0.000 V, max = 50.000 V)  ALARM  read-only
//   GPIO
//       pin  name  dir  level
//         0  DI0   in   high   read-only
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Items.h"
#include "Reading.h"
#include "Style.h"
#include "Width.h"

namespace voractl {

struct TableRow {
    const Item* item = nullptr;
    std::string value;     // as people read it
    bool failed = false;   // the value could not be read
    bool changed = false;  // the value differs from the previous sample
    bool alarm = false;    // the value lies outside the published range
    bool bare = false;     // the value is the module's number (--raw): so are the limits
    bool libraryUnit = false;  // and that number is in the library's own unit
};

struct TableColumns {
    bool id = true;        // the item id before the name
    bool changed = false;  // a "*" after a changed value
    bool access = true;    // "read-only" after a value that cannot be set
    bool limits = false;   // the published min and max after the value
    bool pins = false;     // a GPIO pin's direction and level in one row
    // The width to fit: columns are measured over the whole table, else
    // over each group when a row would not fit; a row that still does not
    // fit goes on over further lines, its values whole.
    size_t width = SIZE_MAX;
};

// A row for each reading.
std::vector<TableRow> TableRows(const std::vector<Reading>& readings);

// The table's lines, without line ends. Rows come in document order, so
// the items of a block and of a group follow each other.
std::vector<std::string> ItemTable(const std::vector<TableRow>& rows, const TableColumns& columns,
                                   const Style& style);

// A published limit of `item` as its values are shown: "50.000 V"; with
// `bare` the number alone, in the library's unit with `libraryUnit`.
std::string LimitText(const Item& item, double limit, bool bare, bool libraryUnit);

// "(min = 0.000 V, max = 50.000 V)" for a ranged number; "" for anything
// else. With `bare`, the numbers alone as the module gives values ("(min =
// 2731, max = 3731)"), in the library's unit with `libraryUnit`.
std::string LimitsText(const Item& item, bool bare = false, bool libraryUnit = false);

}  // namespace voractl
