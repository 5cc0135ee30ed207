// Every line the module may print, written down from its documented messages
// (their slips included), for tests that check it prints nothing else.
#pragma once

#include <cstdint>
#include <string>

namespace vtest {

// The part of `printed` (from its first unknown character to the end of that
// line) that is not a sequence of the module's messages; "" when all of it is.
// A few messages of the platform-information block end without a line end
// and run into the next one; they are matched as they are.
std::string UnknownOutput(const std::string& printed);

// The entry point's line for a failed get or set of a block's item: "VORADrv
// get value: function:<block> get value failed <status>\n" and its set twin.
std::string GetFailedLine(const std::string& block, uint32_t status);
std::string SetFailedLine(const std::string& block);

// The name of the block serving item class `classId` (id AND 0xF0000), or "".
std::string BlockName(uint32_t classId);

}  // namespace vtest
