#include "Recording.h"

#include "files/Read.h"

#include <time.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Calls.h"

namespace vorarec {

namespace {

constexpr const char* kFormat = "voradrv-recording";
constexpr int kVersion = 1;
// No text a library answers into a module buffer is longer than this (the
// third generation's largest).
constexpr size_t kLongestText = 4096;
constexpr size_t kMostWords = 64;

std::string Now() {
    const time_t now = time(nullptr);
    struct tm utc {};
    gmtime_r(&now, &utc);
    char text[32];
    strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

// A value of "in" or "out": a number, null, a text, a flag, or an array of
// numbers.
bool Plain(const json_t* value) {
    if (json_is_array(value)) {
        if (json_array_size(value) > kMostWords) {
            return false;
        }
        size_t i;
        const json_t* word;
        json_array_foreach(value, i, word) {
            if (!json_is_integer(word)) {
                return false;
            }
        }
        return true;
    }
    return json_is_number(value) || json_is_null(value) || json_is_boolean(value) ||
           (json_is_string(value) && json_string_length(value) <= 2 * kLongestText);
}

std::string CheckCall(const json_t* call) {
    if (!json_is_object(call)) {
        return ": expected an object";
    }
    const char* key;
    json_t* value;
    json_object_foreach(const_cast<json_t*>(call), key, value) {
        if (std::strcmp(key, "function") != 0 && std::strcmp(key, "in") != 0 &&
            std::strcmp(key, "status") != 0 && std::strcmp(key, "out") != 0) {
            return ": unknown key " + Quoted(key);
        }
    }
    if (!json_is_string(json_object_get(call, "function"))) {
        return ".function: expected a function's name";
    }
    const json_t* status = json_object_get(call, "status");
    if (status != nullptr && !json_is_integer(status)) {
        return ".status: expected a number";
    }
    for (const char* part : {"in", "out"}) {
        const json_t* members = json_object_get(call, part);
        if (!json_is_object(members)) {
            return std::string(".") + part + ": expected an object";
        }
        json_object_foreach(const_cast<json_t*>(members), key, value) {
            if (!Plain(value)) {
                return std::string(".") + part + "." + key +
                       ": expected a number, a text, null or up to 64 numbers";
            }
        }
    }
    // A text must fit the buffer the call gave.
    const json_t* size = json_object_get(json_object_get(call, "in"), "length");
    const json_t* out = json_object_get(call, "out");
    const json_t* text = json_object_get(out, "buffer");
    const json_t* hex = json_object_get(out, "hex");
    const size_t bytes = text != nullptr ? json_string_length(text)
                         : hex != nullptr ? json_string_length(hex) / 2
                                          : 0;
    const size_t room = json_is_integer(size) ? static_cast<size_t>(json_integer_value(size)) : 0;
    if ((text != nullptr || hex != nullptr) && bytes > std::min(room, kLongestText)) {
        return ".out." + std::string(text != nullptr ? "buffer" : "hex") + ": longer than the call's buffer (" +
               std::to_string(room) + " bytes)";
    }
    return "";
}

// Stable placeholders: the same text gives the same placeholder throughout.
// A placeholder keeps the class of text the module treats apart: "Unknown"
// and an empty text stay, every other keeps its length, its line feeds and
// punctuation, and is valid UTF-8 exactly when the original was.
class Placeholders {
public:
    // `text` with its letters as x and X and its digits those of a number
    // counting the texts seen; a byte of a multi-byte character becomes x,
    // or 0xFF, never part of a character, in a text that is not UTF-8.
    std::string text(const std::string& original, bool utf8 = true) {
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

    // An IPv4 address from the documentation ranges (192.0.2.0/24 first),
    // the same for the same address; 0.0.0.0 stays.
    std::vector<json_int_t> address(const std::vector<json_int_t>& octets) {
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

    // A MAC address from the documentation range 00:00:5E:00:53:xx.
    std::vector<json_int_t> mac(const std::vector<json_int_t>& words) {
        auto [at, added] = macs_.emplace(words, std::vector<json_int_t>{});
        if (added) {
            at->second = {0x00, 0x00, 0x5E, 0x00, 0x53, static_cast<json_int_t>(macs_.size() & 0xFF)};
        }
        return at->second;
    }

private:
    std::map<std::string, std::string> texts_;
    std::map<std::vector<json_int_t>, std::vector<json_int_t>> addresses_;
    std::map<std::vector<json_int_t>, std::vector<json_int_t>> macs_;
};

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
        case 0x2: case 0xE: {  // host name, server domain name: a character a word
            std::string text;
            for (json_int_t c : Words(words, 0, count)) {
                if ((c & 0xFF) == 0) {
                    break;
                }
                text += static_cast<char>(c & 0xFF);
            }
            const std::string placeholder = placeholders.text(text);
            put(std::vector<json_int_t>(placeholder.begin(), placeholder.end()));
            break;
        }
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

Recording::~Recording() { json_decref(calls_); }

bool IsRecording(const std::string& text) {
    return text.substr(0, 255).find(std::string("\"") + kFormat + "\"") != std::string::npos;
}

std::string ReadBoardFile(const std::string& path) {
    std::string text = vorafiles::Read(path, vorafiles::kRecordingLimit);
    if (!IsRecording(text)) {
        vorafiles::Within(text.size(), vorafiles::kProfileLimit);
    }
    return text;
}

namespace {

// The objects in a JSON text, strings left out: each call is three (itself,
// what went in and what came out), so this bounds the calls before jansson
// spends memory on them.
size_t Objects(const std::string& text) {
    size_t objects = 0;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            i += c == '\\' ? 1 : 0;
            quoted = c != '"';
        } else {
            quoted = c == '"';
            objects += c == '{' ? 1 : 0;
        }
    }
    return objects;
}

}  // namespace

std::string Recording::Key(const std::string& function, const json_t* in) {
    char* dumped = json_dumps(in, JSON_COMPACT | JSON_SORT_KEYS);
    std::string key = function + "\x1f" + (dumped != nullptr ? dumped : "");
    std::free(dumped);
    return key;
}

bool Recording::load(const std::string& text, std::string& error) {
    const std::string tooMany = "calls: more than the " + std::to_string(kMostCalls) +
                                " calls a recording may hold";
    if (Objects(text) > 3 * kMostCalls + 3) {
        error = tooMany;
        return false;
    }
    json_error_t parse;
    json_t* document = json_loads(text.c_str(), JSON_REJECT_DUPLICATES, &parse);
    if (document == nullptr) {
        error = "line " + std::to_string(parse.line) + ", column " + std::to_string(parse.column) +
                ": " + parse.text;
        return false;
    }
    const json_t* format = json_object_get(document, "format");
    const json_t* version = json_object_get(document, "version");
    const json_t* library = json_object_get(document, "library");
    const json_t* calls = json_object_get(document, "calls");
    if (!json_is_object(document) || !json_is_string(format) || std::strcmp(json_string_value(format), kFormat) != 0) {
        error = std::string("format: expected \"") + kFormat + "\"";
    } else if (!json_is_integer(version) || json_integer_value(version) != kVersion) {
        error = "version: this simulator reads recordings of version " + std::to_string(kVersion);
    } else if (!json_is_string(json_object_get(library, "generation"))) {
        error = "library.generation: expected \"4\", \"3\" or \"eapi\"";
    } else if (!json_is_array(calls)) {
        error = "calls: expected an array";
    } else if (json_array_size(calls) > kMostCalls) {
        error = tooMany;
    }
    size_t i;
    json_t* call;
    json_array_foreach(calls, i, call) {
        const std::string problem = error.empty() ? CheckCall(call) : "";
        if (!problem.empty()) {
            error = "calls[" + std::to_string(i) + "]" + problem;
        }
    }
    if (!error.empty()) {
        json_decref(document);
        return false;
    }
    name_ = json_string_value(json_object_get(library, "name")) != nullptr
                ? json_string_value(json_object_get(library, "name"))
                : "";
    generation_ = json_string_value(json_object_get(library, "generation"));
    path_ = json_string_value(json_object_get(library, "path")) != nullptr
                ? json_string_value(json_object_get(library, "path"))
                : "";
    redacted_ = json_is_true(json_object_get(document, "redacted"));
    const char* recorded = json_string_value(json_object_get(document, "recorded"));
    recorded_ = recorded != nullptr ? recorded : "";
    json_array_foreach(calls, i, call) {
        add(json_string_value(json_object_get(call, "function")),
            json_incref(json_object_get(call, "in")), json_incref(json_object_get(call, "status")),
            json_incref(json_object_get(call, "out")));
    }
    json_decref(document);
    return true;
}

void Recording::setLibrary(const std::string& name, const std::string& generation, const std::string& path) {
    name_ = name;
    generation_ = generation;
    path_ = path;
    recorded_ = Now();
}

void Recording::add(const std::string& function, json_t* in, json_t* status, json_t* out) {
    const auto [at, added] = index_.emplace(Key(function, in), json_array_size(calls_));
    if (!added) {
        json_decref(in);
        json_decref(status);
        json_decref(out);
        return;
    }
    json_t* call = json_pack("{s:s, s:o}", "function", function.c_str(), "in", in);
    if (status != nullptr) {
        json_object_set_new(call, "status", status);
    }
    json_object_set_new(call, "out", out);
    json_array_append_new(calls_, call);
}

std::optional<Recording::Answer> Recording::find(const std::string& function, const json_t* in) const {
    const auto at = index_.find(Key(function, in));
    if (at == index_.end()) {
        return std::nullopt;
    }
    const json_t* call = json_array_get(calls_, at->second);
    return Answer{json_object_get(call, "status"), json_object_get(call, "out")};
}

// Every text the allow-list (KeptText) does not name and every word of
// every management network value, in what came out of a call and in what
// went into one (a write of a host name, say).
void Recording::redact() {
    Placeholders placeholders;
    size_t i;
    json_t* call;
    json_array_foreach(calls_, i, call) {
        const std::string function = json_string_value(json_object_get(call, "function"));
        json_t* in = json_object_get(call, "in");
        json_t* out = json_object_get(call, "out");
        if (!KeptText(function, in)) {
            RedactText(out, placeholders);
        }
        const json_int_t id = json_integer_value(json_object_get(in, "id"));
        if (json_is_integer(json_object_get(in, "id")) && id >= 0x12000 && id <= 0x1200F) {
            for (json_t* part : {in, out}) {
                if (json_t* words = json_object_get(part, "words"); json_is_array(words)) {
                    RedactNetwork(id - 0x12000, words, placeholders);
                }
            }
        }
    }
    // What went in may have changed, and with it what finds a call.
    index_.clear();
    json_array_foreach(calls_, i, call) {
        index_.emplace(Key(json_string_value(json_object_get(call, "function")),
                           json_object_get(call, "in")),
                       i);
    }
    redacted_ = true;
}

std::string Recording::text() const {
    // The header, then one call a line, so that a person can read and edit it.
    json_t* header = json_pack("{s:s, s:i, s:{s:s, s:s, s:s}, s:s, s:b}", "format", kFormat,
                               "version", kVersion, "library", "name", name_.c_str(), "generation",
                               generation_.c_str(), "path", path_.c_str(), "recorded",
                               recorded_.empty() ? Now().c_str() : recorded_.c_str(),
                               "redacted", redacted_);
    char* dumped = json_dumps(header, JSON_COMPACT);
    std::string text = dumped != nullptr ? dumped : "{}";
    std::free(dumped);
    json_decref(header);
    text.pop_back();  // the closing brace
    text += ",\n\"calls\": [";
    size_t i;
    json_t* call;
    json_array_foreach(calls_, i, call) {
        dumped = json_dumps(call, JSON_COMPACT | JSON_REAL_PRECISION(17));
        text += std::string(i == 0 ? "\n" : ",\n") + (dumped != nullptr ? dumped : "{}");
        std::free(dumped);
    }
    return text + "\n]}\n";
}

}  // namespace vorarec
