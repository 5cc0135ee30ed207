// Reading a JSON file whose every value has a type and a range: board
// profiles and recordings. A value is read through the Node that holds it
// and its place in the file ("sensors.voltage[2].value", "calls[3].status"),
// and a value that is not what its place takes is refused with that place,
// what was expected and what was found:
//
//   gpio[0].level: expected 0 or 1, found the text "high"
#pragma once

#include <jansson.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "json/JsonPtr.h"

namespace vorarec {

// A file that cannot be used; what() names the place and the problem.
class JsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using vorajson::JsonPtr;

// Parses a whole JSON text; a key given twice in one object is refused.
// Throws JsonError: "line 3, column 7: ...".
JsonPtr ParseJson(const std::string& text);

class Node {
public:
    // `json` at `path`; `file` names the whole ("profile") for a problem of
    // the whole itself.
    Node(const json_t* json, std::string path, std::string file = "");

    const json_t* json() const { return json_; }
    const std::string& path() const { return path_; }
    bool present() const { return json_ != nullptr; }

    // "PATH: expected EXPECTED, found WHAT THERE IS".
    [[noreturn]] void fail(const std::string& expected) const;
    // "PATH: PROBLEM", for a problem that is not one value's type.
    [[noreturn]] void refuse(const std::string& problem) const;
    // What the value is, for a message: "the text \"high\"", "the number 7",
    // "true", "an object", "an array of 3", "nothing".
    std::string found() const;

    Node member(const char* key) const;
    Node element(size_t i) const;

    // Requires an object whose keys are all among `allowed`.
    void object(std::initializer_list<const char*> allowed) const;
    void object(const std::vector<std::string>& allowed) const;
    // Requires an array; its size.
    size_t arraySize() const;

    // A JSON integer from `least` to `most`; `expected` says so in words.
    long long integer(long long least, long long most, const std::string& expected) const;
    // A 32-bit number: a JSON integer (negative ones wrap, as a library's
    // signed raw values do) or a text in decimal or 0x-hexadecimal.
    uint32_t u32() const;
    // The same, from `least` to `most` (negative numbers do not wrap).
    uint32_t u32(uint32_t least, uint32_t most) const;
    // A JSON number from `least` to `most`.
    double number(double least, double most) const;
    double number() const;
    std::string text() const;
    bool boolean() const;

private:
    // A JSON integer, or a whole number in a text.
    std::optional<long long> wholeNumber() const;

    const json_t* json_;
    std::string path_;
    std::string file_;
};

}  // namespace vorarec
