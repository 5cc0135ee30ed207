// voractl watch: readings followed live, until a count or a stop signal.
#pragma once

#include <string>
#include <vector>

#include "Commands.h"

namespace voractl {

// Samples the items `selectors` name (ids, paths, blocks or groups; without any,
// the whole hardware monitor) every `interval` seconds, `count` times or,
// with `count` 0, until SIGINT or SIGTERM. On a terminal the table is
// redrawn in place; otherwise each sample is one line (one JSON document
// with --json). Values that changed since the sample before are marked.
// Returns 0 when it ended as asked, also by a signal or a reader that went
// away; throws ToolError when the output fails otherwise.
int Watch(Context& context, const std::vector<std::string>& selectors, double interval,
          long count);

}  // namespace voractl
