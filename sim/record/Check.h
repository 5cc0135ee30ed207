// What a recording's call may hold, checked against its library's table: a
// function of that library, every argument that went in with its C type's
// range, and each answer's status and outputs likewise.
#pragma once

#include "JsonPath.h"
#include "Libraries.h"

namespace vorarec {

// The most a recorded call may have taken, in microseconds: an hour.
constexpr long long kLongestCall = 3600LL * 1000 * 1000;

// Checks one entry of a recording's "calls": {"function", "in", and either
// "status", "out", "took_us" (one answer) or "answers": [{"status", "out",
// "took_us", "times"}, ...]}. Throws JsonError naming the place. Returns
// the function's signature.
const Signature& CheckCall(const Node& call, const Library& library);

}  // namespace vorarec
