// voractl export: every readable item for a monitoring system.
#pragma once

#include <string>

#include "Commands.h"

namespace voractl {

// Reads every item and writes them in `format` ("senml" or "prometheus") to
// the file `output` (atomically: a reader sees the old file or the new one,
// never half of one), or to the context's output when `output` is empty.
// Returns 1 when an item could not be read (it is left out and named on
// standard error), else 0.
int Export(Context& context, const std::string& format, const std::string& output);

// Replaces the file at `path` with `text`: written to a temporary file in the
// same directory, synced, then renamed over `path`. The file gets the mode
// 0666 less the umask. Throws ToolError on failure, leaving `path` as it was.
void WriteFileAtomically(const std::string& path, const std::string& text);

}  // namespace voractl
