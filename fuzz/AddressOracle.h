// An independent reading of the rules for the texts a host may send to the
// network settings, written character by character without streams, for the
// fuzz targets to hold the module's checks and conversions against.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace oracle {

inline bool Blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}
inline bool Digit(char c) { return c >= '0' && c <= '9'; }
inline int HexDigit(char c) {
    if (Digit(c)) {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// A piece of an IPv4 text: blanks, an optional sign, at least one digit;
// what follows the digits does not count. Its octet, or none when the
// number is missing or outside 0..255 ("-0" is 0).
inline std::optional<unsigned> Octet(const std::string& piece) {
    size_t i = 0;
    while (i < piece.size() && Blank(piece[i])) {
        ++i;
    }
    bool negative = false;
    if (i < piece.size() && (piece[i] == '+' || piece[i] == '-')) {
        negative = piece[i] == '-';
        ++i;
    }
    const size_t first = i;
    unsigned long value = 0;
    while (i < piece.size() && Digit(piece[i])) {
        value = std::min(value * 10 + static_cast<unsigned long>(piece[i] - '0'), 1000ul);
        ++i;
    }
    if (i == first || value > 255 || (negative && value != 0)) {
        return std::nullopt;
    }
    return static_cast<unsigned>(value);
}

// The four octets of an IPv4 text, or none. The text falls into pieces at
// each "."; a final "." closes the last piece without opening another.
inline std::optional<std::array<unsigned, 4>> Address(const std::string& text) {
    std::vector<std::string> pieces;
    std::string current;
    for (char c : text) {
        if (c == '.') {
            pieces.push_back(current);
            current.clear();
        } else {
            current += c;
        }
    }
    if (!current.empty()) {
        pieces.push_back(current);
    }
    if (pieces.size() != 4) {
        return std::nullopt;
    }
    std::array<unsigned, 4> octets{};
    for (size_t k = 0; k < 4; ++k) {
        const std::optional<unsigned> octet = Octet(pieces[k]);
        if (!octet) {
            return std::nullopt;
        }
        octets[k] = *octet;
    }
    return octets;
}

// The six octets of a MAC text, or none: 17 characters, ":" at every third
// place, a hexadecimal digit everywhere else.
inline std::optional<std::array<unsigned, 6>> Mac(const std::string& text) {
    if (text.size() != 17) {
        return std::nullopt;
    }
    std::array<unsigned, 6> octets{};
    for (size_t i = 0; i < text.size(); ++i) {
        if (i % 3 == 2) {
            if (text[i] != ':') {
                return std::nullopt;
            }
            continue;
        }
        const int digit = HexDigit(text[i]);
        if (digit < 0) {
            return std::nullopt;
        }
        octets[i / 3] = octets[i / 3] * 16 + static_cast<unsigned>(digit);
    }
    return octets;
}

// The 32 words of a host name, or none for 32 characters or more. Each
// byte is taken as signed: 0x80..0xFF become 0xFFFFFF80..0xFFFFFFFF.
inline std::optional<std::vector<unsigned>> HostName(const std::string& text) {
    if (text.size() >= 32) {
        return std::nullopt;
    }
    std::vector<unsigned> words(32, 0);
    for (size_t i = 0; i < text.size(); ++i) {
        const unsigned byte = static_cast<unsigned char>(text[i]);
        words[i] = byte >= 0x80 ? 0xFFFFFF00u | byte : byte;
    }
    return words;
}

}  // namespace oracle
