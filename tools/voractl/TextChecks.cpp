#include "TextChecks.h"

#include <cctype>
#include <cstdint>
#include <optional>
#include <vector>

namespace voractl {

namespace {

// A host name's longest; the board keeps 31 characters.
constexpr size_t kLongestHostName = 31;

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts{""};
    for (char c : text) {
        if (c == separator) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

bool AllOf(const std::string& text, int (*is)(int)) {
    for (unsigned char c : text) {
        if (is(c) == 0) {
            return false;
        }
    }
    return !text.empty();
}

// Six pairs of hexadecimal digits joined by ":" ("00:0b:AB:12:34:5f").
bool Mac(const std::string& text) {
    const std::vector<std::string> pairs = Split(text, ':');
    bool good = pairs.size() == 6;
    for (const std::string& pair : pairs) {
        good = good && pair.size() == 2 && AllOf(pair, isxdigit);
    }
    return good;
}

// Four decimal numbers from 0 to 255 joined by "." (leading zeros read as
// decimal, as the board reads them); the address as one number.
std::optional<uint32_t> Address(const std::string& text) {
    const std::vector<std::string> pieces = Split(text, '.');
    if (pieces.size() != 4) {
        return std::nullopt;
    }
    uint32_t address = 0;
    for (const std::string& piece : pieces) {
        if (piece.size() > 3 || !AllOf(piece, isdigit) || std::stoi(piece) > 255) {
            return std::nullopt;
        }
        address = address << 8 | static_cast<uint32_t>(std::stoi(piece));
    }
    return address;
}

// Ones, then zeros: 255.255.255.0, not 255.0.255.0.
bool Netmask(const std::string& text) {
    const std::optional<uint32_t> mask = Address(text);
    return mask && (~*mask & (~*mask + 1)) == 0;
}

// Labels of letters, digits and "-" (not first or last), joined by ".",
// shorter than 32 characters all told; empty clears the name.
bool HostName(const std::string& text) {
    if (text.empty()) {
        return true;
    }
    bool good = text.size() <= kLongestHostName;
    for (const std::string& label : Split(text, '.')) {
        good = good && !label.empty() && label.size() <= 63 && label.front() != '-' && label.back() != '-';
        for (unsigned char c : label) {
            good = good && (std::isalnum(c) != 0 || c == '-');
        }
    }
    return good;
}

}  // namespace

std::string PrefixNote(const Item& item, const std::string& value) {
    if (TextFormOf(item.kind(), item.name) != TextForm::Netmask || !Netmask(value)) {
        return "";
    }
    int ones = 0;
    for (uint32_t mask = *Address(value); mask != 0; mask <<= 1) {
        ++ones;
    }
    return " (/" + std::to_string(ones) + ")";
}

std::string TextRefusal(const Item& item, const std::string& text) {
    switch (TextFormOf(item.kind(), item.name)) {
        case TextForm::Mac:
            return Mac(text) ? "" : "\"" + text + "\" is not a MAC address (six pairs of hexadecimal digits "
                                                  "joined by \":\", 00:0b:ab:12:34:5f)";
        case TextForm::Address:
            return Address(text) ? "" : "\"" + text + "\" is not an IPv4 address (four numbers from 0 "
                                                      "to 255 joined by \".\", 192.168.1.20)";
        case TextForm::Netmask:
            return Netmask(text) ? "" : "\"" + text + "\" is not a netmask (an IPv4 address of ones "
                                                      "then zeros, 255.255.255.0)";
        case TextForm::HostName:
            return HostName(text) ? "" : "\"" + text + "\" is not a host name (up to 31 letters, digits, "
                                                       "\"-\" and \".\"; empty clears it)";
        case TextForm::Any:
            break;
    }
    return "";
}

}  // namespace voractl
