#include "JsonPath.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Calls.h"

namespace vorarec {

namespace {

// A text as a message quotes it: in JSON's escapes, and cut when long.
std::string Shown(const char* text, size_t length) {
    constexpr size_t kMost = 40;
    const std::string quoted = Quoted(std::string(text, std::min(length, kMost)));
    return length > kMost ? quoted.substr(0, quoted.size() - 1) + "...\"" : quoted;
}

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

}  // namespace

JsonPtr ParseJson(const std::string& text) {
    json_error_t error;
    json_t* root = json_loadb(text.data(), text.size(), JSON_REJECT_DUPLICATES, &error);
    if (root == nullptr) {
        throw JsonError("line " + std::to_string(error.line) + ", column " +
                        std::to_string(error.column) + ": " + error.text);
    }
    return JsonPtr(root);
}

Node::Node(const json_t* json, std::string path, std::string file)
    : json_(json), path_(std::move(path)), file_(std::move(file)) {}

void Node::refuse(const std::string& problem) const {
    throw JsonError((path_.empty() ? file_ : path_) + ": " + problem);
}

void Node::fail(const std::string& expected) const { refuse("expected " + expected + ", found " + found()); }

std::string Node::found() const {
    switch (json_ == nullptr ? JSON_NULL : json_typeof(json_)) {
        case JSON_OBJECT:
            return "an object";
        case JSON_ARRAY:
            return "an array of " + std::to_string(json_array_size(json_));
        case JSON_STRING:
            return "the text " + Shown(json_string_value(json_), json_string_length(json_));
        case JSON_INTEGER:
            return "the number " + std::to_string(json_integer_value(json_));
        case JSON_REAL:
            return "the number " + Number(json_real_value(json_));
        case JSON_TRUE:
            return "true";
        case JSON_FALSE:
            return "false";
        default:
            return json_ == nullptr ? "nothing" : "null";
    }
}

Node Node::member(const char* key) const {
    return Node(json_object_get(json_, key), path_.empty() ? key : path_ + "." + key, file_);
}

Node Node::element(size_t i) const {
    return Node(json_array_get(json_, i), path_ + "[" + std::to_string(i) + "]", file_);
}

void Node::object(std::initializer_list<const char*> allowed) const {
    object(std::vector<std::string>(allowed.begin(), allowed.end()));
}

void Node::object(const std::vector<std::string>& allowed) const {
    if (!json_is_object(json_)) {
        fail("an object");
    }
    const char* key;
    json_t* value;
    json_object_foreach(const_cast<json_t*>(json_), key, value) {
        if (std::find(allowed.begin(), allowed.end(), key) == allowed.end()) {
            refuse("unknown key " + Shown(key, std::strlen(key)));
        }
    }
}

size_t Node::arraySize() const {
    if (!json_is_array(json_)) {
        fail("an array");
    }
    return json_array_size(json_);
}

long long Node::integer(long long least, long long most, const std::string& expected) const {
    if (!json_is_integer(json_) || json_integer_value(json_) < least || json_integer_value(json_) > most) {
        fail(expected);
    }
    return json_integer_value(json_);
}

std::optional<long long> Node::wholeNumber() const {
    if (json_is_integer(json_)) {
        return json_integer_value(json_);
    }
    if (!json_is_string(json_)) {
        return std::nullopt;
    }
    const char* text = json_string_value(json_);
    char* end = nullptr;
    errno = 0;
    const long long v = std::strtoll(text, &end, 0);
    if (*text == '\0' || *end != '\0' || errno != 0 || std::strlen(text) != json_string_length(json_)) {
        return std::nullopt;
    }
    return v;
}

uint32_t Node::u32() const {
    const std::optional<long long> v = wholeNumber();
    if (!v || *v < -2147483648LL || *v > 0xFFFFFFFFLL) {
        fail("a number from -2147483648 to 4294967295, or one in a text (\"0x1F\")");
    }
    return static_cast<uint32_t>(*v);
}

uint32_t Node::u32(uint32_t least, uint32_t most) const {
    const std::optional<long long> v = wholeNumber();
    if (!v || *v < least || *v > most) {
        fail(least == 0 && most == 1 ? "0 or 1"
                                     : "a number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return static_cast<uint32_t>(*v);
}

double Node::number(double least, double most) const {
    if (!json_is_number(json_) || !(json_number_value(json_) >= least && json_number_value(json_) <= most)) {
        fail("a number from " + Number(least) + " to " + Number(most));
    }
    return json_number_value(json_);
}

double Node::number() const {
    if (!json_is_number(json_)) {
        fail("a number");
    }
    return json_number_value(json_);
}

std::string Node::text() const {
    if (!json_is_string(json_)) {
        fail("a text");
    }
    return json_string_value(json_);  // to its first NUL, as a C library would take it
}

bool Node::boolean() const {
    if (!json_is_boolean(json_)) {
        fail("true or false");
    }
    return json_is_true(json_);
}

}  // namespace vorarec
