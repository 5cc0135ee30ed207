// The management network's part of a board profile: its values in their
// text forms (a MAC address, IPv4 addresses, names) or as the library's raw
// word arrays by board value id.
#pragma once

#include "Board.h"
#include "record/JsonPath.h"

namespace vorasim {

// Reads the profile's "network" into `board`. Throws vorarec::JsonError.
void ParseNetwork(const vorarec::Node& n, Board& board);

}  // namespace vorasim
