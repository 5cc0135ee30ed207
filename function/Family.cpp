#include "Family.h"

#include <cstdio>

#include "module/Status.h"

namespace voradrv {

uint32_t MergeCapability(json_t* package, json_t* capability, const char* message) {
    if (package == nullptr || !json_is_object(package) || json_object_size(package) == 0) {
        return STATUS_UNSUPPORTED;
    }
    if (json_object_update(capability, package) != 0) {
        std::puts(message);
        return STATUS_ERROR;
    }
    return STATUS_SUCCESS;
}

}  // namespace voradrv
