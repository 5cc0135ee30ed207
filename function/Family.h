// What the five family classes share: creating the block for the board
// library that is up, and answering a capability request from a package.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <type_traits>

#include "binding/ECTL2Handle.h"
#include "binding/VORA3Handle.h"
#include "binding/VORA4Handle.h"
#include "function/Function.h"

namespace voradrv {

template <typename Block>
Function* Create(Function*& remembered) {
    if constexpr (!std::is_void_v<Block>) {
        remembered = new Block();
    }
    return remembered;
}

// The family factory: a new block for the first library that is up, in the
// order fourth generation, third generation, EApi (`void` where the family
// has no block for that library); without a library, the block created
// last time (null if none). Every call with a library up creates a block;
// its owner is the module's registry, not the family.
template <typename Vora4, typename Vora3, typename EApi>
Function* CreateForLibrary(Function*& remembered) {
    if (VORA4Handle::instance()->Avaliable()) {
        return Create<Vora4>(remembered);
    }
    if (VORA3Handle::instance()->Avaliable()) {
        return Create<Vora3>(remembered);
    }
    if (ECTL2Handle::instance()->Avaliable()) {
        return Create<EApi>(remembered);
    }
    return remembered;
}

// A family's capability answer: `package`'s members merged into the
// caller's object (shared by reference). A missing or empty package means
// nothing to offer (STATUS_UNSUPPORTED, silently); a failed merge prints the
// family's `message`.
uint32_t MergeCapability(json_t* package, json_t* capability, const char* message);

}  // namespace voradrv
