// Readers of the network values that are texts: each reads the value's words
// from the fourth-generation library and writes them out as text. Each
// returns the library's status (0 on success) and writes its output only on
// success.
#pragma once

#include <cstdint>

namespace voradrv::network {

// Words of the texts kept one character per word.
constexpr unsigned char kHostNameChars = 32;
constexpr unsigned char kServerNameChars = 64;
// Output sizes the block uses for the formatted texts, terminator included:
// "xx:xx:xx:xx:xx:xx", "ddd.ddd.ddd.ddd", "ddd.ddd.ddd.ddd:ppppp".
constexpr unsigned char kMacTextSize = 18;
constexpr unsigned char kAddressTextSize = 16;
constexpr unsigned char kAddressPortTextSize = 21;

// out[i] = the low byte of words[i] for i below count. No terminator is
// added. Always 0: it calls no library, and answers like the readers.
uint32_t getStr(const unsigned int* words, char* out, unsigned char count);

// The 32 characters of the host name into `out` (at least 32 bytes), not
// terminated.
uint32_t getHostName(unsigned int id, char* out);
// The 64 characters of the server domain name into `out` (at least 64
// bytes), not terminated.
uint32_t getDomainServerName(unsigned int id, char* out);

// The formatted readers write at most len - 1 characters and a zero at
// out[len - 1] (a longer text is cut). Each word is printed as the whole
// number, so a word above 0xFF takes more digits than an octet would. A
// len of 0 leaves `out` untouched.

// "a.b.c.d" of four words in decimal.
uint32_t getIPConfig(unsigned int id, char* out, unsigned char len);
// "AA:BB:CC:DD:EE:FF" of six words, each at least two upper-case
// hexadecimal digits.
uint32_t getMacAddr(unsigned int id, char* out, unsigned char len);
// "a.b.c.d:port" of four words and a port, in decimal.
uint32_t getIPPort(unsigned int id, char* out, unsigned char len);

}  // namespace voradrv::network
