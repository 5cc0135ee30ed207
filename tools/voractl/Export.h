// voractl export: every readable item for a monitoring system.
#pragma once

#include "Commands.h"

namespace voractl {

// Reads every item and writes the readable ones in the --format asked for
// ("senml" or "prometheus") to the --output (see Output.h). Returns 1 when
// an item could not be read (it is left out and named on standard error),
// else 0.
int Export(Context& context);

}  // namespace voractl
