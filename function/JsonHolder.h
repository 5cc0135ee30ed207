// JsonHolder: one reference to a JSON value, released when the holder goes
// out of scope unless handed on with release(). A builder that holds a value
// across calls that may throw (memory exhausted) then loses nothing when it
// is cut short.
#pragma once

#include <jansson.h>

#include <memory>

namespace voradrv {

struct JsonRelease {
    void operator()(json_t* json) const { json_decref(json); }
};

using JsonHolder = std::unique_ptr<json_t, JsonRelease>;

}  // namespace voradrv
