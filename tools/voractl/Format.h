// Texts voractl shows: statuses, values and units.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <string>

namespace voractl {

// "not found (0xFFFFFBFF)"; a status of the board library is shown as
// "library status (0x...)".
std::string StatusText(uint32_t status);

// A JSON scalar as people read it: reals without trailing noise, strings
// as they are.
std::string ValueText(const json_t* value);

// A unit as people read it ("Cel" is shown as "°C", "hour" as "hours"; "info",
// "Step", "", and the network texts' "HEX" and "DEC" as nothing).
std::string UnitText(const std::string& unit);

// A value with its unit as people read it, the way `sensors` shows readings
// ("+48.5 °C", "1.050 V", "2400 RPM", "1.250 A"), and the two-state units in
// words ("in"/"out", "high"/"low", "on"/"off").
std::string DisplayValue(const json_t* value, const std::string& unit);

// "0x1020201".
std::string IdText(uint32_t id);

// Now, in seconds since 1970, to the millisecond.
double UnixTime();

}  // namespace voractl
