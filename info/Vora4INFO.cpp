#include "Vora4INFO.h"

#include <algorithm>
#include <cstdio>

#include "binding/VORA4Handle.h"
#include "info/InfoItems.h"
#include "module/Status.h"

using namespace voradrv::info;

namespace {

constexpr unsigned kValueCount = 7;
constexpr unsigned kStringCount = 9;
constexpr unsigned kFirstCustomer = 16;
constexpr unsigned kLastCustomer = 18;
constexpr uint32_t kCustomerLabel = 0x90000000;  // library id of a customer string's label
// Board strings: 64-byte buffer, only empty strings left out.
constexpr StringRules kStringRules = {kStringSize, false, false, false};

// Reads string `id` into `buffer` (kStringSize + 1 bytes). The buffer is
// zeroed first and stays terminated whatever the library writes.
uint32_t ReadString(unsigned int id, char* buffer) {
    std::fill(buffer, buffer + kStringSize + 1, '\0');
    unsigned int length = kStringSize;
    return VORA4Handle::mVoraBoardGetStringA(id, buffer, &length);
}

}  // namespace

Vora4INFO::Vora4INFO() = default;

void Vora4INFO::createIPSOInfoPackage(json_t* array) {
    getValueInfo(array);
    getStringInfo(array);
    getCustomizeString(array);
    getVersion(array);
}

int Vora4INFO::getValueInfo(json_t* array) {
    return BuildValues(array, idtoLibIDMap, &VORA4Handle::mVoraBoardGetValue, kValueCount);
}

int Vora4INFO::getStringInfo(json_t* array) {
    return BuildStrings(array, idtoLibIDMap, &VORA4Handle::mVoraBoardGetStringA, kStringCount,
                        kStringRules);
}

int Vora4INFO::getCustomizeString(json_t* array) {
    int result = 1;
    for (unsigned k = kFirstCustomer; k <= kLastCustomer; ++k) {
        char text[kStringSize + 1];
        if (ReadString(k, text) != 0 || text[0] == '\0') {
            continue;
        }
        const uint32_t id = kStringGroup + 1 + k;
        idtoLibIDMap[id] = k;
        // The label's status is not checked; a failed call leaves an empty
        // label, since the buffer is cleared first.
        char label[kStringSize + 1];
        ReadString(k | kCustomerLabel, label);
        if (!AppendEntry(array, TextEntry(label, text, id), "getCustomizeString")) {
            return -1;
        }
        result = 0;
    }
    return result;
}

int Vora4INFO::getVersion(json_t* array) {
    return BuildVersions(array, idtoLibIDMap, &VORA4Handle::mVoraBoardGetValue);
}

uint32_t Vora4INFO::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    auto item = idtoLibIDMap.find(id);
    if (item == idtoLibIDMap.end()) {
        std::puts("VORADrv Info Get Value: id not found");
        return STATUS_NOT_FOUND;
    }
    return ReadItem(id, item->second, value, &VORA4Handle::mVoraBoardGetValue,
                    &VORA4Handle::mVoraBoardGetStringA, false);
}

uint32_t Vora4INFO::VoraIoTSetMDValue(uint32_t, json_t*) { return STATUS_UNSUPPORTED; }
