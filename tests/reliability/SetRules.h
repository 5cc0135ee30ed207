// The module's rules for a write from the host, read independently of its
// code: whether a value reaches the board library and, when it does not, the
// status the module answers. Shared by the fault sweep and the hostile-input
// tests, which hold every write they make against it.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <string>
#include <vector>

#include "SimHarness.h"

namespace vtest {

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

// True for a logged library call that changes the board.
bool IsWriteCall(const std::string& logLine);

// The words of a logged network write ("VoraBoardSetValue 0x12003
// words=0x0,0xB,..."); empty for any other line.
std::vector<unsigned> LoggedWords(const std::string& logLine);

// True when `logged` is `wanted` followed by zeros (the library sees the
// value's whole word array).
bool SameWords(const std::vector<unsigned>& logged, const std::vector<unsigned>& wanted);

}  // namespace vtest
