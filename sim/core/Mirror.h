// Where a write shows in what the board answers afterwards: the read that
// mirrors it and the output that then holds what was written. A Set (or
// Write) call's read is its Get (Read) with the same inputs but the value;
// the third generation's directions are bits of VoraIOQueryMask's answer to
// selector 32, one a pin, set for an input.
#pragma once

#include <optional>
#include <string>

#include "record/Calls.h"
#include "record/JsonPath.h"

namespace vorasim {

struct Mirror {
    std::string read;             // the read's key (Recording::Key)
    std::string output;           // the output of the read that shows the write
    std::optional<unsigned> bit;  // only this bit of it
    vorarec::JsonPtr value;       // what it shows
};

// The mirror of a write of `signature` with `in`; none for a write no read
// shows (the third generation's screen on and off).
std::optional<Mirror> MirrorOf(const vorarec::Signature& signature, const json_t* in);

}  // namespace vorasim
