#include "eCtl2INFO.h"

#include <cstdio>

#include "binding/ECTL2Handle.h"
#include "info/InfoItems.h"
#include "module/Status.h"

using namespace voradrv::info;

namespace {

constexpr unsigned kValueCount = 5;
constexpr unsigned kStringCount = 7;
// Board strings are taken in through 32 bytes while building; reads use the
// full 64.
constexpr StringRules kStringRules = {32, true, true, true};

}  // namespace

eCtl2INFO::eCtl2INFO() = default;

void eCtl2INFO::createIPSOInfoPackage(json_t* array) {
    getValueInfo(array);
    getStringInfo(array);
    getVersion(array);
}

int eCtl2INFO::getValueInfo(json_t* array) {
    return BuildValues(array, idtoLibIDMap, &ECTL2Handle::mEApiBoardGetValue, kValueCount);
}

int eCtl2INFO::getStringInfo(json_t* array) {
    return BuildStrings(array, idtoLibIDMap, &ECTL2Handle::mEApiBoardGetStringA, kStringCount,
                        kStringRules);
}

int eCtl2INFO::getVersion(json_t* array) {
    return BuildVersions(array, idtoLibIDMap, &ECTL2Handle::mEApiBoardGetValue);
}

uint32_t eCtl2INFO::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    auto item = idtoLibIDMap.find(id);
    if (item == idtoLibIDMap.end()) {
        std::puts("VORADrv Info Get Value: id not found");
        return STATUS_NOT_FOUND;
    }
    // A string that reads "Unknown" now (it did not while building) is
    // passed on as it is.
    return ReadItem(id, item->second, value, &ECTL2Handle::mEApiBoardGetValue,
                    &ECTL2Handle::mEApiBoardGetStringA, true);
}

uint32_t eCtl2INFO::VoraIoTSetMDValue(uint32_t, json_t*) { return STATUS_UNSUPPORTED; }
