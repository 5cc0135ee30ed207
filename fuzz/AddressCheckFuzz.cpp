// Fuzz target: ChkIpStr, ChkMacStr and the words a checked text becomes,
// held against the character-level reading in AddressOracle.h. Any
// difference aborts with the input shown.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/AddressOracle.h"
#include "network/AddressText.h"

using namespace voradrv::network;

namespace {

[[noreturn]] void Differs(const char* what, const std::string& text) {
    std::fprintf(stderr, "%s differs for \"", what);
    for (unsigned char c : text) {
        std::fprintf(stderr, c >= 0x20 && c < 0x7F && c != '"' ? "%c" : "\\x%02X", c);
    }
    std::fprintf(stderr, "\"\n");
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    const auto address = oracle::Address(text);
    if (ChkIpStr(text) != address.has_value()) {
        Differs("ChkIpStr", text);
    }
    if (address) {
        Words words{};
        AddressWords(text, words);
        for (size_t i = 0; i < words.size(); ++i) {
            if (words[i] != (i < 4 ? (*address)[i] : 0u)) {
                Differs("AddressWords", text);
            }
        }
    }

    const auto mac = oracle::Mac(text);
    if (ChkMacStr(text) != mac.has_value()) {
        Differs("ChkMacStr", text);
    }
    if (mac) {
        Words words{};
        MacWords(text, words);
        for (size_t i = 0; i < words.size(); ++i) {
            if (words[i] != (i < 6 ? (*mac)[i] : 0u)) {
                Differs("MacWords", text);
            }
        }
    }

    const auto host = oracle::HostName(text);
    Words words{};
    if (HostNameWords(text, words) != host.has_value()) {
        Differs("HostNameWords", text);
    }
    for (size_t i = 0; host && i < words.size(); ++i) {
        if (words[i] != (i < host->size() ? (*host)[i] : 0u)) {
            Differs("HostNameWords", text);
        }
    }
    return 0;
}
