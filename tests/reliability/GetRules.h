// The module's rules for a read from the host, read independently of its
// code: the status each block answers for any item id and any JSON value, and
// the block's own message. For the hostile-input tests.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <set>
#include <string>

#include "SimHarness.h"

namespace vtest {

// What the module published for a board: the item ids of its capability
// document (and on the fourth generation the sixteen network ids, which the
// block maps whether or not it could read them).
struct Published {
    std::set<uint32_t> ids;
    unsigned pins = 0;        // third generation: GPIO0 .. GPIO<pins - 1>
    bool brightness = false;  // third generation: the screen's brightness
    bool mapped(uint32_t id) const { return ids.count(id) != 0; }
};
// The ids of `document` (a capability document) on `generation`'s board.
Published PublishedBy(Generation generation, const json_t* document);

struct GetExpectation {
    uint32_t status = 0;
    std::string message;  // the block's own line, before the entry point's
};

// The answer to reading item `id` into `value` (null included) on an
// initialised module whose board published `published`.
GetExpectation ExpectGet(Generation generation, uint32_t id, const json_t* value,
                         const Published& published);

// The block's message of a write refused for its type ("" for none).
std::string SetTypeMessage(uint32_t id, uint32_t status);

}  // namespace vtest
