// Texts voractl shows: statuses, values and units.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <string>

#include "Items.h"

namespace voractl {

// "not found (0xFFFFFBFF)"; a status of the board library is shown as
// "library status (0x...)".
std::string StatusText(uint32_t status);

// A JSON scalar as people read it: reals without trailing noise, strings
// as they are.
std::string ValueText(const json_t* value);

// An item's unit as people read it: its symbol ("Cel" is shown as "°C",
// "hour" as "hours"), nothing for a unit that shows nothing ("Step", "info").
std::string UnitText(const Item& item);

// A value of `item` with its unit as people read it, the way `sensors` shows readings
// ("+48.5 °C", "1.050 V", "2400 RPM", "1.250 A"), and a two-state unit's
// states in its words ("in"/"out", "high"/"low", "on"/"off").
std::string DisplayValue(const json_t* value, const Item& item);

// "0x1020201".
std::string IdText(uint32_t id);

// Now, in seconds since 1970, to the millisecond.
double UnixTime();

}  // namespace voractl
