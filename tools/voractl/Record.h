// voractl record: the board library's answers to everything the module asks
// when a host reads the whole board, as a recording any simulator replays.
#pragma once

#include "Commands.h"

namespace voractl {

// The file in memory through which the stand-in in front of the board
// library hands voractl the recording: made before voractl runs again under
// the path redirection, it lives across that exec and never reaches a disk,
// so an unredacted recording is nowhere but in this process.
int RecordingChannel();

// Reads every item with its own JSON type, shuts the module down, and
// writes the recording (redacted with --redact) to --output. Returns 1 when
// an item could not be read (its answer is recorded all the same).
int Record(Context& context);

}  // namespace voractl
