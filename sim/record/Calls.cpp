#include "Calls.h"

#include <cstdio>

namespace vorarec {

namespace {

bool Utf8(const std::string& text) {
    json_t* probe = json_stringn(text.data(), text.size());
    json_decref(probe);
    return probe != nullptr;
}

std::string Hex(const std::string& bytes) {
    std::string hex;
    char pair[3];
    for (unsigned char c : bytes) {
        std::snprintf(pair, sizeof pair, "%02x", c);
        hex += pair;
    }
    return hex;
}

std::string Unhex(const char* hex) {
    std::string bytes;
    for (size_t i = 0; hex[i] != '\0' && hex[i + 1] != '\0'; i += 2) {
        bytes += static_cast<char>(std::strtoul(std::string(hex + i, 2).c_str(), nullptr, 16));
    }
    return bytes;
}

// A value as the trace shows it: numbers in hexadecimal, texts quoted and
// escaped, word arrays in full.
std::string Shown(const json_t* value) {
    char text[64];
    switch (json_typeof(value)) {
        case JSON_INTEGER:
            std::snprintf(text, sizeof text, "0x%llX",
                          static_cast<unsigned long long>(json_integer_value(value)) & 0xFFFFFFFFull);
            return text;
        case JSON_REAL:
            std::snprintf(text, sizeof text, "%g", json_real_value(value));
            return text;
        case JSON_NULL:
            return "NULL";
        case JSON_STRING:
            return Quoted(json_string_value(value));
        case JSON_ARRAY: {
            std::string words = "[";
            size_t i;
            const json_t* word;
            json_array_foreach(value, i, word) { words += (i == 0 ? "" : ",") + Shown(word); }
            return words + "]";
        }
        default:
            return "?";
    }
}

std::string Members(const json_t* object) {
    std::string text;
    const char* key;
    json_t* value;
    json_object_foreach(const_cast<json_t*>(object), key, value) {
        text += (text.empty() ? "" : ", ") + std::string(key) + "=" + Shown(value);
    }
    return text;
}

}  // namespace

std::string Quoted(const std::string& text) {
    json_t* string = json_stringn(text.data(), text.size());
    char* quoted = json_dumps(string, JSON_ENCODE_ANY | JSON_ENSURE_ASCII);
    json_decref(string);
    std::string result = quoted != nullptr ? quoted : "\"?\"";
    std::free(quoted);
    return result;
}

namespace {

// The kind of a declaration's type: "unsigned short* value" holds a U16.
Kind KindOf(const std::string& type) {
    const bool isUnsigned = type.find("unsigned") != std::string::npos;
    if (type.find("char") != std::string::npos) {
        return isUnsigned ? Kind::U8 : Kind::Text;
    }
    if (type.find("short") != std::string::npos) {
        return Kind::U16;
    }
    if (type.find("float") != std::string::npos || type.find("double") != std::string::npos) {
        return Kind::Real;
    }
    return isUnsigned ? Kind::U32 : Kind::I32;
}

}  // namespace

Signature::Signature(const char* name, const char* parameters, const char* result)
    : function(name), returns(std::string(result) != "void") {
    // "(unsigned int id, char* buffer, unsigned int* length)"
    std::string text = parameters;
    for (char& c : text) {
        c = c == '(' || c == ')' ? ' ' : c;
    }
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find(',', start);
        end = end == std::string::npos ? text.size() : end;
        const std::string decl = text.substr(start, end - start);
        const size_t last = decl.find_last_not_of(' ');
        if (last != std::string::npos) {
            const size_t first = decl.find_last_of(" *", last) + 1;
            params.push_back({decl.substr(first, last + 1 - first), decl.find('*') != std::string::npos,
                              KindOf(decl.substr(0, first))});
        }
        start = end + 1;
    }
    writes = Writes(function);
}

bool Writes(std::string_view function) {
    return function.find("Set") != std::string_view::npos ||
           function.find("Write") != std::string_view::npos ||
           function.find("Screen") != std::string_view::npos;
}

size_t WordCount(uint32_t id) { return id >= 0x12000 && id <= 0x1200F ? 64 : 1; }

void PutText(json_t* object, const char* buffer, size_t size) {
    const void* end = std::memchr(buffer, '\0', size);
    const std::string text(buffer, end != nullptr ? static_cast<const char*>(end) - buffer : size);
    if (Utf8(text)) {
        json_object_set_new(object, "buffer", json_stringn(text.data(), text.size()));
    } else {
        json_object_set_new(object, "hex", json_string(Hex(text).c_str()));
    }
    if (end == nullptr) {
        json_object_set_new(object, "terminated", json_false());
    }
}

bool TakeText(const json_t* recorded, char* buffer, size_t size) {
    const json_t* text = json_object_get(recorded, "buffer");
    const std::string bytes = text != nullptr
                                  ? std::string(json_string_value(text), json_string_length(text))
                                  : Unhex(json_string_value(json_object_get(recorded, "hex")) != nullptr
                                              ? json_string_value(json_object_get(recorded, "hex"))
                                              : "");
    const bool terminated = !json_is_false(json_object_get(recorded, "terminated"));
    if (bytes.size() + (terminated ? 1 : 0) > size) {
        return false;
    }
    std::memcpy(buffer, bytes.data(), bytes.size());
    if (terminated) {
        buffer[bytes.size()] = '\0';
    }
    return true;
}

std::string TraceLine(const Signature& s, const json_t* in, const json_t* status, const json_t* out,
                      double seconds) {
    char time[32];
    std::snprintf(time, sizeof time, " <%.6f>", seconds);
    std::string line = s.function + "(" + Members(in) + ")";
    line += status != nullptr ? " = " + Shown(status) : "";
    const std::string outputs = Members(out);
    line += outputs.empty() ? "" : " -> " + outputs;
    return line + time;
}

}  // namespace vorarec
