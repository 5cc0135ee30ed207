// Reading a board profile (JSON text) into a Board and its faults.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "Board.h"

namespace vorasim {

// A profile that cannot be used; what() names the place and the problem,
// for example "sensors.voltage[2].value: expected a number".
class ProfileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

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
