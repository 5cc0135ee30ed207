// voractl watch: readings followed live, until a count or a stop signal.
#pragma once

#include "Commands.h"

namespace voractl {

// Samples the items the arguments name (ids, paths, blocks or groups;
// without any, the whole hardware monitor) every --interval seconds,
// --count times or, without a count, until SIGINT or SIGTERM. On a terminal
// whose TERM is not "dumb" the table is redrawn in place; otherwise each
// sample is one line (one JSON document with --json). Values that changed
// since the sample before are marked. Returns 0 when it ended as asked,
// also by a signal or a reader that went away, and 1 when an item could not
// be read in a sample; throws ToolError when the output fails otherwise.
int Watch(Context& context);

}  // namespace voractl
