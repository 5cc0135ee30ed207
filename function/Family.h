// What the five family classes share: answering a capability request from
// a block package.
#pragma once

#include <jansson.h>

#include <cstdint>

namespace voradrv {

// A family's capability answer: `package`'s members merged into the
// caller's object (shared by reference). A missing or empty package means
// nothing to offer (STATUS_UNSUPPORTED, silently); a failed merge prints the
// family's `message`.
uint32_t MergeCapability(json_t* package, json_t* capability, const char* message);

}  // namespace voradrv
