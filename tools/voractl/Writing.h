// voractl set: values checked against the capability document before any
// reaches the module, then written one by one and read back.
#pragma once

#include "Commands.h"

namespace voractl {

// Writes each NAME=VALUE of the arguments (or one ITEM VALUE); none is
// written when one is refused by the document. Returns 0, or 1 when a
// value was refused, failed in the module or board, or did not read back
// as written.
int Set(Context& context);

}  // namespace voractl
