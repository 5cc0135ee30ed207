// Reading a board profile (JSON text) into a Board and its faults.
#pragma once

#include <string>
#include <vector>

#include "Board.h"
#include "record/JsonPath.h"

namespace vorasim {

// A profile that cannot be used; what() names the place, what was expected
// and what was found: "sensors.voltage[2].value: expected a number, found
// the text \"high\"".
using ProfileError = vorarec::JsonError;

struct Profile {
    Board board;
    std::vector<Fault> faults;
};

// Parses a whole profile. Throws ProfileError.
Profile ParseProfile(const std::string& text);

// Parses one entry of a profile's "faults" list. Throws ProfileError.
Fault ParseFault(const std::string& text);

// The board and its faults as profile text that ParseProfile reads back to
// the same board and faults (values as raw numbers, network values as word
// arrays).
std::string FormatProfile(const Board& board, const std::vector<Fault>& faults = {});

}  // namespace vorasim
