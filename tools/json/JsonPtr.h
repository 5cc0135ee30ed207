// One reference to a jansson value, released when the pointer goes: how the
// tools hold every value they make, parse or are handed, so that a value
// held across a call that throws is never leaked. The module keeps its
// own (function/JsonHolder.h): it is built and shipped without the tools.
#pragma once

#include <jansson.h>

#include <memory>

namespace vorajson {

struct Release {
    void operator()(json_t* json) const { json_decref(json); }
};

using JsonPtr = std::unique_ptr<json_t, Release>;

// Takes over the reference of `json`, as returned by jansson's constructors
// and parsers (null stays null).
inline JsonPtr Own(json_t* json) { return JsonPtr(json); }

}  // namespace vorajson
