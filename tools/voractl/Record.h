// voractl record: the board library's answers to everything the module asks
// when a host reads the whole board, as a recording any simulator replays.
#pragma once

#include <string>

#include "Commands.h"

namespace voractl {

// Where the stand-in in front of the board library keeps the recording
// while voractl runs: a fresh file, named before voractl runs under the
// path redirection.
std::string RecordingFile();

// Reads every item with its own JSON type, shuts the module down, and
// writes the recording (redacted with --redact) to --output. Returns 1 when
// an item could not be read (its answer is recorded all the same).
int Record(Context& context);

}  // namespace voractl
