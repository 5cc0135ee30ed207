// The module's rules for a read or a write from the host, read independently
// of its code: the status each block answers for any item id and any JSON
// value, the block's own message, and whether a write reaches the board
// library. The hostile-input tests and the fault sweep hold every call they
// make against them.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

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
Published PublishedBy(Generation generation, const json_t* document);

struct GetExpectation {
    uint32_t status = 0;
    std::string message;  // the block's own line, before the entry point's
};
// The answer to reading item `id` into `value` (null included) on an
// initialised module whose board published `published`.
GetExpectation ExpectGet(Generation generation, uint32_t id, const json_t* value,
                         const Published& published);

enum class WriteRule {
    Refused,          // no library call; the module answers `status`
    NoEffect,         // no library call; the module answers success
    Written,          // exactly one library write; the library's status
    WrittenIfChanged  // a read of the present state, then at most one write
};
struct SetExpectation {
    WriteRule rule = WriteRule::Refused;
    uint32_t status = 0;          // for Refused (and NoEffect: 0)
    std::vector<unsigned> words;  // network writes: the words the value stands for
};
// `mapped`: the id is one the block published (on the fourth-generation
// network block: any of its sixteen ids once initialised).
SetExpectation ExpectSet(Generation generation, uint32_t id, const json_t* value, bool mapped);
// The block's message of a write refused for its type ("" for none).
std::string SetTypeMessage(uint32_t id, uint32_t status);

// The logged library calls that change the board.
std::vector<std::string> WriteCalls(const std::vector<std::string>& logLines);
// True when the logged network write ("VoraBoardSetValue 0x12003
// words=0x0,0xB,...") holds `wanted` followed by zeros (the library sees the
// value's whole word array).
bool WroteWords(const std::string& logLine, const std::vector<unsigned>& wanted);

}  // namespace vtest
