// Redacting a recording: every text but those that identify no board or
// site, and every word of the management network's values, replaced by a
// placeholder of the same length and form, so that the module treats the
// redacted answer as it treated the original (see the README's allow-list).
#pragma once

#include <jansson.h>

#include <map>
#include <string>
#include <vector>

namespace vorarec {

// Stable placeholders: the same text gives the same placeholder throughout.
// A placeholder keeps the class of text the module treats apart: "Unknown"
// and an empty text stay, every other keeps its length, its line feeds and
// punctuation, and is valid UTF-8 exactly when the original was.
class Placeholders {
public:
    // `text` with its letters as x and X and its digits those of a number
    // counting the texts seen; a byte of a multi-byte character becomes x,
    // or 0xFF, never part of a character, in a text that is not UTF-8.
    std::string text(const std::string& original, bool utf8 = true);
    // An IPv4 address from the documentation ranges (192.0.2.0/24 first),
    // the same for the same address; 0.0.0.0 stays.
    std::vector<json_int_t> address(const std::vector<json_int_t>& octets);
    // A MAC address from the documentation range 00:00:5E:00:53:xx.
    std::vector<json_int_t> mac(const std::vector<json_int_t>& words);

private:
    std::map<std::string, std::string> texts_;
    std::map<std::vector<json_int_t>, std::vector<json_int_t>> addresses_;
    std::map<std::vector<json_int_t>, std::vector<json_int_t>> macs_;
};

// Redacts the calls of one recording, one after another, with placeholders
// shared by all of them.
class Redactor {
public:
    // The texts that came out of a call of `function` with `in`.
    void texts(const std::string& function, const json_t* in, json_t* out);
    // The words of a management network value in what went in or came out
    // (a write of a host name, say).
    void words(const json_t* in, json_t* part);

private:
    Placeholders placeholders_;
};

}  // namespace vorarec
