#include "Redaction.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace vorarec {

std::string Placeholders::text(const std::string& original, bool utf8) {
    if (original.empty() || original == "Unknown") {
        return original;
    }
    auto [at, added] = texts_.emplace(original, "");
    if (!added) {
        return at->second;
    }
    size_t digits = 0;
    for (char c : original) {
        digits += std::isdigit(static_cast<unsigned char>(c)) != 0 ? 1 : 0;
    }
    std::string number = std::to_string(texts_.size());
    number = digits > number.size() ? std::string(digits - number.size(), '0') + number
                                    : number.substr(number.size() - digits);
    std::string shaped;
    size_t d = 0;
    for (char c : original) {
        const unsigned char u = static_cast<unsigned char>(c);
        shaped += std::isdigit(u) != 0 ? number[d++]
                  : std::isupper(u) != 0 ? 'X'
                  : std::isalpha(u) != 0 ? 'x'
                  : u >= 0x80            ? (utf8 ? 'x' : '\xFF')
                                         : c;
    }
    return at->second = shaped;
}

std::vector<json_int_t> Placeholders::address(const std::vector<json_int_t>& octets) {
    if (octets == std::vector<json_int_t>{0, 0, 0, 0}) {
        return octets;
    }
    auto [at, added] = addresses_.emplace(octets, std::vector<json_int_t>{});
    if (added) {
        static const json_int_t kRanges[][3] = {{192, 0, 2}, {198, 51, 100}, {203, 0, 113}};
        const size_t n = addresses_.size();
        const json_int_t* range = kRanges[((n - 1) / 254) % 3];
        at->second = {range[0], range[1], range[2], static_cast<json_int_t>((n - 1) % 254 + 1)};
    }
    return at->second;
}

std::vector<json_int_t> Placeholders::mac(const std::vector<json_int_t>& words) {
    auto [at, added] = macs_.emplace(words, std::vector<json_int_t>{});
    if (added) {
        at->second = {0x00, 0x00, 0x5E, 0x00, 0x53, static_cast<json_int_t>(macs_.size() & 0xFF)};
    }
    return at->second;
}

namespace {

std::vector<json_int_t> Words(const json_t* array, size_t from, size_t count) {
    std::vector<json_int_t> words;
    for (size_t i = from; i < from + count && i < json_array_size(array); ++i) {
        words.push_back(json_integer_value(json_array_get(array, i)));
    }
    return words;
}

// The texts a redacted recording keeps, for they identify no board or site:
// the board's manufacturer, name, revisions (board, BIOS, hardware),
// platform type, firmware and BIOS names, and the names the maker gave the
// sensors and panels; on the third generation its platform name and BIOS
// version. Every other text goes: the serial number, customer strings and
// their labels, pin names (what a site wired to a pin), and whatever text a
// library answers that is not listed here.
bool KeptText(const std::string& function, const json_t* in) {
    if (function == "VoraCoreGetPlatformName" || function == "VoraCoreGetBIOSVersion") {
        return true;
    }
    const json_t* id = json_object_get(in, "id");
    if (!json_is_integer(id) || (function != "VoraBoardGetStringA" && function != "EApiBoardGetStringA")) {
        return false;
    }
    const json_int_t n = json_integer_value(id);
    if (n >= 0 && n <= 8) {
        return n != 3;  // 3: the serial number
    }
    return function == "VoraBoardGetStringA" &&
           ((n >= 0x20000 && n < 0x25000) || (n & 0xFFFFFF00) == 0x60000000);
}

// A text answer ("buffer", or "hex" when it is not UTF-8) replaced by its
// placeholder, whatever it holds.
void RedactText(json_t* out, Placeholders& placeholders) {
    if (const json_t* text = json_object_get(out, "buffer")) {
        const std::string original(json_string_value(text), json_string_length(text));
        const std::string shaped = placeholders.text(original);
        json_object_set_new(out, "buffer", json_stringn(shaped.data(), shaped.size()));
    }
    if (const char* hex = json_string_value(json_object_get(out, "hex"))) {
        std::string bytes;
        for (size_t i = 0; hex[i] != '\0' && hex[i + 1] != '\0'; i += 2) {
            bytes += static_cast<char>(std::strtoul(std::string(hex + i, 2).c_str(), nullptr, 16));
        }
        std::string shaped;
        char pair[3];
        for (unsigned char c : placeholders.text(bytes, false)) {
            std::snprintf(pair, sizeof pair, "%02x", c);
            shaped += pair;
        }
        json_object_set_new(out, "hex", json_string(shaped.c_str()));
    }
}

// A name held a character a word, up to its terminator, as its placeholder.
std::vector<json_int_t> NameWords(const std::vector<json_int_t>& words, Placeholders& placeholders) {
    std::string text;
    for (json_int_t c : words) {
        if ((c & 0xFF) == 0) {
            break;
        }
        text += static_cast<char>(c & 0xFF);
    }
    const std::string placeholder = placeholders.text(text);
    return std::vector<json_int_t>(placeholder.begin(), placeholder.end());
}

// A management network value (board value 0x12000 + item) as words, every
// word replaced: a number keeps its first word, a name its placeholder, an
// address one of the documentation's, a mask its four octets; every word
// after those, whatever a terminator before it says, is zero.
void RedactNetwork(json_int_t item, json_t* words, Placeholders& placeholders) {
    const size_t count = json_array_size(words);
    std::vector<json_int_t> shaped(count, 0);
    const auto put = [&](const std::vector<json_int_t>& value) {
        std::copy_n(value.begin(), std::min(value.size(), count), shaped.begin());
    };
    switch (item) {
        case 0x0: case 0x1: case 0xC: case 0xD:  // control, status, error code, server type
            put(Words(words, 0, 1));
            break;
        case 0x2: case 0xE:  // host name, server domain name
            put(NameWords(Words(words, 0, count), placeholders));
            break;
        case 0x3:
            put(placeholders.mac(Words(words, 0, 6)));
            break;
        case 0x5: case 0x9: {  // masks
            const std::vector<json_int_t> mask = Words(words, 0, 4);
            if (std::all_of(mask.begin(), mask.end(), [](json_int_t o) { return o >= 0 && o <= 255; })) {
                put(mask);
            }
            break;
        }
        case 0xF: {  // server address and port
            std::vector<json_int_t> server = placeholders.address(Words(words, 0, 4));
            const std::vector<json_int_t> port = Words(words, 4, 1);
            server.insert(server.end(), port.begin(), port.end());
            put(server);
            break;
        }
        default:
            put(placeholders.address(Words(words, 0, 4)));
    }
    json_array_clear(words);
    for (json_int_t word : shaped) {
        json_array_append_new(words, json_integer(word));
    }
}

}  // namespace

void Redactor::texts(const std::string& function, const json_t* in, json_t* out) {
    if (!KeptText(function, in)) {
        RedactText(out, placeholders_);
    }
}

void Redactor::words(const json_t* in, json_t* part) {
    const json_t* id = json_object_get(in, "id");
    json_t* words = json_object_get(part, "words");
    if (json_is_integer(id) && json_integer_value(id) >= 0x12000 && json_integer_value(id) <= 0x1200F &&
        json_is_array(words)) {
        RedactNetwork(json_integer_value(id) - 0x12000, words, placeholders_);
    }
}

}  // namespace vorarec
