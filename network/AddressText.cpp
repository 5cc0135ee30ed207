#include "AddressText.h"

#include <cctype>
#include <sstream>
#include <vector>

#include "network/NetworkReaders.h"

namespace voradrv::network {

bool ChkIpStr(const std::string& text) {
    // Pieces up to each "."; the read that finds nothing more ends the list,
    // so a trailing dot adds no piece while two dots in a row add an empty
    // one.
    std::vector<std::string> pieces;
    std::istringstream stream(text);
    std::string piece;
    while (std::getline(stream, piece, '.')) {
        pieces.push_back(piece);
    }
    if (pieces.size() != 4) {
        return false;
    }
    for (const std::string& p : pieces) {
        std::istringstream number(p);
        int octet = 0;
        if (!(number >> octet) || octet < 0 || octet > 255) {
            return false;
        }
    }
    return true;
}

bool ChkMacStr(const std::string& text) {
    if (text.size() != 17) {
        return false;
    }
    for (size_t group = 0; group < 6; ++group) {
        const size_t at = group * 3;
        if (!std::isxdigit(static_cast<unsigned char>(text[at])) ||
            !std::isxdigit(static_cast<unsigned char>(text[at + 1]))) {
            return false;
        }
        if (group < 5 && text[at + 2] != ':') {
            return false;
        }
    }
    return true;
}

bool HostNameWords(const std::string& text, Words& words) {
    if (text.size() >= kHostNameChars) {
        return false;
    }
    words.fill(0);
    for (size_t i = 0; i < text.size(); ++i) {
        words[i] = static_cast<unsigned int>(static_cast<int>(static_cast<signed char>(text[i])));
    }
    return true;
}

void MacWords(const std::string& text, Words& words) {
    std::istringstream stream(text);
    std::string piece;
    for (size_t i = 0; i < 6 && std::getline(stream, piece, ':'); ++i) {
        std::istringstream number(piece);
        unsigned int octet = 0;
        number >> std::hex >> octet;
        words[i] = octet;
    }
}

void AddressWords(const std::string& text, Words& words) {
    size_t start = 0;
    for (size_t i = 0; i < 4; ++i) {
        const size_t dot = text.find('.', start);
        std::istringstream number(text.substr(start, dot == std::string::npos ? dot : dot - start));
        unsigned int octet = 0;
        number >> octet;
        words[i] = octet;
        if (dot == std::string::npos) {
            break;
        }
        start = dot + 1;
    }
}

}  // namespace voradrv::network
