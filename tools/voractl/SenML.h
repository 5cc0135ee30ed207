// Readings as a SenML pack (RFC 8428): a JSON array of records.
#pragma once

#include <string>
#include <vector>

#include "Reading.h"

namespace voractl {

// One record per readable item. The first record carries the base name
// ("bn", naming the board by its name and serial number when they can be
// read) and the base time ("bt", `time` in seconds since 1970); each record
// carries its name ("n", the item's path made of SenML's name characters),
// its unit ("u", a SenML unit where there is one) and one value: "v" for a
// number, "vs" for a text or a pin direction, "vb" for an on/off or
// high/low state. The caller owns the array.
json_t* SenmlPack(const std::vector<Reading>& readings, double time);

// `text` in SenML's name characters (letters, digits, "-:./_"): a run of
// other characters becomes one "_", dropped at the end of a name part.
std::string SenmlName(const std::string& text);

}  // namespace voractl
