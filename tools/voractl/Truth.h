// The board's true values. The module publishes what the board library
// answers, in the library's own units and senses; voractl, which people and
// fleets read, shows what the board really does. On an Embedded API library
// that means:
// - temperatures, answered in tenths of a kelvin, shown in degrees Celsius
//   (the units table says which unit a library gives in another);
// - a panel's on/off, which reads 0 for a lit panel, shown as 1 for on.
// Every other value is the module's. With `raw`, all values are the module's.
#pragma once

#include <jansson.h>

#include <string>

#include "Items.h"
#include "json/JsonPtr.h"

namespace voractl {

class Truth {
public:
    // `generation`: that of the board library in use ("4", "3", "eapi").
    Truth(std::string generation, bool raw) : generation_(std::move(generation)), raw_(raw) {}

    // The true value of what the module read for `item` (a new value).
    vorajson::JsonPtr shown(const Item& item, const json_t* read) const;
    // The value the module must be sent for `item` to become `value`.
    vorajson::JsonPtr toModule(const Item& item, const json_t* value) const;
    // True when the board's true value of what the module read for `item`
    // lies outside the element's published range, whatever --raw says.
    bool alarm(const Item& item, const json_t* read) const;
    // True when `item`'s values are converted.
    bool converts(const Item& item) const;
    // True when the module gives `item`'s values in the library's own unit
    // rather than the published one, --raw or not.
    bool libraryUnit(const Item& item) const;
    // True when every value is the module's (--raw).
    bool raw() const { return raw_; }

private:
    std::string generation_;
    bool raw_;
};

}  // namespace voractl
