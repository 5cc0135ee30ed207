// voractl record: the board library's answers to everything the module asks
// when a host reads the whole board, once or again and again over a while,
// as a recording any simulator replays.
#pragma once

#include "Commands.h"

namespace voractl {

// The file in memory through which the stand-in in front of the board
// library hands voractl the recording: made before voractl runs again under
// the path redirection, it lives across that exec and never reaches a disk,
// so an unredacted recording is nowhere but in this process.
int RecordingChannel();

// Initialises the module and reads every item with its own JSON type, once,
// or with --duration every --interval seconds for that long (until Ctrl-C or
// SIGTERM), shuts the module down, and writes the recording (redacted with
// --redact) to --output. A module that does not come up, and items that
// cannot be read, are named on standard error and are in the recording,
// which is then whole: the exit status is 0. It is 1 when nothing of the
// board library was recorded, the output cannot be written, or the
// recording filled up before the duration ended (what it holds is written).
int Record(Context& context);

}  // namespace voractl
