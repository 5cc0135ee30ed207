// Vora4Network: the out-of-band management network controller on the
// fourth-generation library. Sixteen items (0x10B0001..0x10B0010) in one
// group "OOBNetwork0": control and status numbers, the host name, the MAC
// address, the modified (settable) and current IPv4 settings, and the
// management server. Reads and writes go to the library every time.
#pragma once

#include "function/FuncNetwork.h"

class Vora4Network : public FuncNetwork {
public:
    Vora4Network();
    // Releases an array a capability build left behind (only possible when
    // the build was cut short by an exception). The records and the package
    // are the family's.
    ~Vora4Network() override;

    // A JSON integer gets the value's first word, for any item; a JSON string
    // gets the text of a text item. The value is untouched on failure.
    uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) override;
    // A JSON integer is written as one word to any item (the library decides
    // whether the item takes it); a JSON string is checked and written to the
    // host name, the MAC address or a modified IPv4 setting, and ignored
    // (with success) for any other item. A refused value is never written.
    uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) override;

    // Maps all sixteen items, then appends the record "OOBNetwork0" holding
    // every item the library could read; no record when it could read none.
    void createIPSONetworkPackage() override;

private:
    // Clears and releases the array being built, if any.
    void releaseArray();

    // The capability array while createIPSONetworkPackage builds it; null
    // before and after, since the packager takes it over when the build
    // succeeds and releaseArray drops it when nothing could be read.
    json_t* array_ = nullptr;
};
