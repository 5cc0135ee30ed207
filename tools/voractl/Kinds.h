// What an item's unit says its values are. The capability document gives
// every element a unit ("u", else its group's "bu"); each unit the module
// publishes is one row of the table in Kinds.cpp, which says everything
// voractl does with it: how a person reads a value, how the module's value
// becomes the board's true one, how Prometheus and SenML name it, and, for
// a two-state unit, which words stand for its states. A new unit is a new
// row; nothing else matches unit names.
#pragma once

#include <optional>
#include <string>

namespace voractl {

// What a value of the unit is, where that changes what voractl does.
enum class Quantity {
    Number,       // a reading or setting in its unit
    Count,        // how many times something happened
    Duration,     // a time the board has run
    Direction,    // a pin's: in or out
    Level,        // a pin's: high or low
    Switch,       // on or off
    HexText,      // a text of hexadecimal numbers (a MAC address)
    DecimalText,  // a text of decimal numbers (an IPv4 address)
    None,         // no unit: the group holds information
};

// The two states of a two-state unit and the words for each. A word stands
// for one state of one kind only: "low" is a level, never a direction.
struct TwoStateKind {
    const char* name = nullptr;        // what a value of it is, for messages: "a direction"
    const char* one[2] = {};           // the words for 1, the first of them the one shown
    const char* zero[2] = {};          // the words for 0; a null word is none
    bool boolean = false;              // true and false to SenML; else its words

    // 0 or 1 for "0", "1" or one of the kind's words in any case; none for
    // any other text, a word of another kind among them.
    std::optional<int> state(const std::string& word) const;
    // The words the kind takes, for messages: "in/out or 1/0".
    std::string words() const;
    // How `state` (0 or 1) is shown; null when the kind has no word for it.
    const char* shown(int state) const { return state == 1 ? one[0] : zero[0]; }
};

// How a person reads a value: the number with `decimals` digits after the
// point (and a sign with `sign`) as `sensors` shows readings, then `symbol`.
struct Shown {
    const char* symbol = nullptr;  // null: the unit as published; "": none
    int decimals = -1;             // -1: the number as the module gives it
    bool sign = false;
};

// How the exports name the unit: Prometheus's base unit after its naming
// guide (a metric suffix and, for help texts, in words) and SenML's unit
// (RFC 8428's registry), with the factor from this unit to theirs.
struct Exported {
    const char* metric = "";     // "celsius"; "": no suffix
    const char* words = "";      // "degrees Celsius"
    const char* senml = nullptr; // "Cel"; null: a value without unit
    double scale = 1.0;
};

// A hardware-monitor sensor of the unit, as node_exporter's hwmon collector
// names its families: voradrv_<family>_<metric>, with _max_ and _min_ ones.
struct Sensor {
    const char* family = nullptr;  // "temperature"; null: named after its group
    const char* help = nullptr;    // "Temperature sensor reading"
};

// On the board library of `generation` the module gives the unit's values
// in the library's own unit; `toTrue` makes them this unit's, `toLibrary`
// this unit's the library's (for limits, which are published in this unit).
struct Conversion {
    const char* generation = nullptr;
    double (*toTrue)(double) = nullptr;
    double (*toLibrary)(double) = nullptr;
};

struct UnitKind {
    const char* unit;  // as the document publishes it: "Cel"
    Quantity quantity;
    Shown shown;
    Exported exported = {};
    Sensor sensor = {};
    TwoStateKind states = {};  // a two-state unit's; name null for any other
    Conversion conversion = {};

    // The two-state kind of the unit; null for any other.
    const TwoStateKind* twoState() const { return states.name != nullptr ? &states : nullptr; }
};

// The form a text setting must have before voractl sends it: the MAC and
// IPv4 addresses by their units, a netmask and a host name by the labels
// the network block publishes them with.
enum class TextForm { Any, Mac, Address, Netmask, HostName };

// The form of the text item `name` of `kind`.
TextForm TextFormOf(const UnitKind& kind, const std::string& name);

// The row of `unit`; a unit of no row is a number shown with the unit as
// published, and exported without one.
const UnitKind& UnitKindOf(const std::string& unit);

// Each two-state unit with the words it takes, a line each: "H/L high
// active low inactive".
std::string TwoStateWordLines();

// A two-state value ("bv") whose unit is none of the two-state kinds': 0 and
// 1 only.
extern const TwoStateKind kPlainTwoState;

}  // namespace voractl
