// One call of a board library function as data: what went in and what came
// out, in JSON, for the trace, the recorder and the replay. What each
// parameter carries is read from its name in the library's table
// (binding/Vora4Library.h): `buffer` a text whose size is the `length` that
// goes in, `length` a number both ways, `words` a word array (in for a
// write, out for a read), any other pointer one output, the rest inputs.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorarec {

// What a parameter (or what it points to) holds, from its C type.
enum class Kind { U32, U16, U8, I32, Real, Text };

struct Param {
    std::string name;
    bool pointer = false;
    Kind kind = Kind::U32;
};

// A library function's name and parameters, from its table row.
struct Signature {
    Signature(const char* function, const char* parameters, const char* result = "uint32_t");
    std::string function;
    std::vector<Param> params;
    bool writes = false;   // changes the board (a Set, Write or Screen call)
    bool returns = true;   // answers a status (every function but a void one)
};

// True for a library function that changes the board: a Set, Write or
// Screen call.
bool Writes(std::string_view function);

// The number of words a `words` parameter carries: the 64 of a network
// value's buffer (ids 0x12000..0x1200F), else one.
size_t WordCount(uint32_t id);

// A text buffer of `size` bytes as JSON: the text up to its terminator, or
// all of it when there is none ("terminated": false); bytes that are not
// UTF-8 as hexadecimal ("hex").
void PutText(json_t* object, const char* buffer, size_t size);
// Writes the text of `recorded` (as PutText made it) into `buffer` of `size`
// bytes, never more; returns false when it does not fit.
bool TakeText(const json_t* recorded, char* buffer, size_t size);

// `calls` JSON, a new object; `json` owns nothing given to it.
namespace detail {

template <typename T>
json_t* Number(T value) {
    if constexpr (std::is_floating_point_v<T>) {
        return json_real(static_cast<double>(value));
    } else {
        return json_integer(static_cast<json_int_t>(value));
    }
}

template <typename T>
void Take(const json_t* value, T* out) {
    if constexpr (std::is_floating_point_v<T>) {
        *out = static_cast<T>(json_number_value(value));
    } else {
        *out = static_cast<T>(json_integer_value(value));
    }
}

// The id of a call: its first argument, when that is a number.
template <typename First, typename... Rest>
uint32_t IdOf(First first, Rest...) {
    if constexpr (std::is_integral_v<First>) {
        return static_cast<uint32_t>(first);
    } else {
        return 0;
    }
}
inline uint32_t IdOf() { return 0; }

// Calls visit(name, argument) for each argument of a call, with the name
// the table gives its parameter.
template <typename Visit, typename... Args>
void EachArgument(const Signature& s, Visit&& visit, Args... args) {
    [[maybe_unused]] size_t i = 0;
    (void)std::initializer_list<int>{(visit(s.params[i++].name, args), 0)...};
}

// The size of the call's text buffer: the `length` that goes in.
template <typename... Args>
size_t BufferSize(const Signature& s, Args... args) {
    size_t size = 0;
    EachArgument(s, [&](const std::string& name, auto arg) {
        if constexpr (std::is_same_v<decltype(arg), unsigned int*>) {
            if (name == "length" && arg != nullptr) {
                size = *arg;
            }
        }
    }, args...);
    return size;
}

}  // namespace detail

// What goes into a call: every number, the `length` and the words of a
// write, and which pointers are null.
template <typename... Args>
json_t* Inputs(const Signature& s, Args... args) {
    json_t* in = json_object();
    const uint32_t id = detail::IdOf(args...);
    detail::EachArgument(s, [&](const std::string& name, auto arg) {
        using Arg = decltype(arg);
        if constexpr (std::is_pointer_v<Arg>) {
            if (arg == nullptr) {
                json_object_set_new(in, name.c_str(), json_null());
            } else if constexpr (std::is_same_v<Arg, unsigned int*>) {
                if (name == "length") {
                    json_object_set_new(in, name.c_str(), json_integer(*arg));
                } else if (name == "words" && s.writes) {
                    json_t* words = json_array();
                    for (size_t w = 0; w < WordCount(id); ++w) {
                        json_array_append_new(words, json_integer(arg[w]));
                    }
                    json_object_set_new(in, name.c_str(), words);
                }
            }
        } else {
            json_object_set_new(in, name.c_str(), detail::Number(arg));
        }
    }, args...);
    return in;
}

namespace detail {

// Calls visit(name, pointer) for each output pointer of a call that is not null.
template <typename Visit, typename... Args>
void EachOutput(const Signature& s, Visit&& visit, Args... args) {
    EachArgument(s, [&](const std::string& name, auto arg) {
        if constexpr (std::is_pointer_v<decltype(arg)>) {
            if (arg != nullptr) {
                visit(name, arg);
            }
        }
    }, args...);
}

}  // namespace detail

// What came out of a call: every output it could have written.
template <typename... Args>
json_t* Outputs(const Signature& s, [[maybe_unused]] size_t bufferSize, Args... args) {
    json_t* out = json_object();
    const uint32_t id = detail::IdOf(args...);
    detail::EachOutput(s, [&](const std::string& name, auto arg) {
        if constexpr (std::is_same_v<decltype(arg), char*>) {
            PutText(out, arg, bufferSize);
        } else if (name != "words") {
            json_object_set_new(out, name.c_str(), detail::Number(*arg));
        } else if (!s.writes) {
            json_t* words = json_array();
            for (size_t w = 0; w < WordCount(id); ++w) {
                json_array_append_new(words, detail::Number(arg[w]));
            }
            json_object_set_new(out, name.c_str(), words);
        }
    }, args...);
    return out;
}

// Writes the outputs of a recorded call into this call's pointers.
template <typename... Args>
void Apply(const Signature& s, [[maybe_unused]] const json_t* out, [[maybe_unused]] size_t bufferSize,
           Args... args) {
    const uint32_t id = detail::IdOf(args...);
    detail::EachOutput(s, [&](const std::string& name, auto arg) {
        if constexpr (std::is_same_v<decltype(arg), char*>) {
            TakeText(out, arg, bufferSize);
        } else if (name != "words") {
            if (const json_t* value = json_object_get(out, name.c_str())) {
                detail::Take(value, arg);
            }
        } else {
            const json_t* words = json_object_get(out, "words");
            for (size_t w = 0; w < WordCount(id) && w < json_array_size(words); ++w) {
                detail::Take(json_array_get(words, w), &arg[w]);
            }
        }
    }, args...);
}

// A text of the board or of a file, quoted as JSON writes it with every
// control and non-ASCII character escaped ("VB\u001b[31m"), so that the
// trace and the simulator's messages show it and a terminal obeys none of it.
std::string Quoted(const std::string& text);

// One trace line: "Name(in) = status -> out <seconds>".
std::string TraceLine(const Signature& s, const json_t* in, const json_t* status, const json_t* out,
                      double seconds);

}  // namespace vorarec
