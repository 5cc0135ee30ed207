// The sixteen items of the out-of-band network block. Each is one board value
// of the fourth-generation library, addressed by a board value id from
// 0x12000 to 0x1200F, and published as item 0x10B0001 + (board value id -
// 0x12000). The library answers every value as an array of 32-bit words.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace voradrv::network {

// The largest word array of a network value (the server domain name). Every
// buffer the block hands the library has this many zeroed words: the library
// reads or writes an id's whole array, whatever part of it the caller means.
constexpr size_t kMaxWords = 64;
using Words = std::array<unsigned int, kMaxWords>;

constexpr uint32_t kFirstValue = 0x12000;
constexpr uint32_t kLastValue = 0x1200F;
constexpr uint32_t kFirstItem = 0x10B0001;

constexpr uint32_t kControl = 0x12000;
constexpr uint32_t kHostName = 0x12002;
constexpr uint32_t kMacAddress = 0x12003;
constexpr uint32_t kFirstModified = 0x12004;  // device IP, sub mask, DNS, gateway
constexpr uint32_t kLastModified = 0x12007;
constexpr uint32_t kLastCurrent = 0x1200B;
constexpr uint32_t kErrorCode = 0x1200C;
constexpr uint32_t kServerName = 0x1200E;
constexpr uint32_t kServerAddress = 0x1200F;

// How the library's words of an item read as a value.
enum class Form {
    Number,      // one word
    HostName,    // 32 words, one character each
    Mac,         // 6 words, one octet each
    Address,     // 4 words, one octet each
    ServerName,  // 64 words, one character each
    AddressPort  // 5 words: four octets and a port
};

struct ItemInfo {
    const char* label;  // "n"
    Form form;
    const char* unit;    // "u": "", "HEX" or "DEC"
    const char* access;  // "asm": "r" or "rw"
    int max;             // "max" of a number with limits, else 0
};

// The item of board value `boardValueId` (kFirstValue..kLastValue).
const ItemInfo& Item(uint32_t boardValueId);

inline uint32_t ItemId(uint32_t boardValueId) { return kFirstItem + (boardValueId - kFirstValue); }

}  // namespace voradrv::network
