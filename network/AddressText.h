// Texts a host sends to the network settings: the checks that guard the
// write path, and the library words a checked text becomes.
#pragma once

#include <string>

#include "network/NetworkItems.h"

namespace voradrv::network {

// A dotted IPv4 address: exactly four pieces between dots, each starting
// with a number from 0 to 255 as an int stream read takes it. Lenient on
// purpose, since hosts send such settings: leading blanks, a sign, leading
// zeros (010 is 10), trailing text in a piece (12abc is 12) and one trailing
// dot (1.2.3.4.) are accepted.
bool ChkIpStr(const std::string& text);

// A MAC address of exactly 17 characters: six pairs of hexadecimal digits
// (either case) joined by ":". Nothing else: no hyphens or dots, no single
// digits, no surrounding blanks.
bool ChkMacStr(const std::string& text);

// The host name one character per word, each widened as a signed char (a
// byte of 0x80 and above becomes 0xFFFFFF80 and above; the library takes
// the words as they are). Words past the text are zero, so an empty text
// clears the name. False, with `words` untouched, for a text of 32
// characters or more.
bool HostNameWords(const std::string& text, Words& words);

// The six octets of a text that ChkMacStr accepted into words 0 to 5.
void MacWords(const std::string& text, Words& words);

// The four numbers of a text that ChkIpStr accepted into words 0 to 3.
void AddressWords(const std::string& text, Words& words);

}  // namespace voradrv::network
