#include "Check.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace vorarec {

namespace {

constexpr size_t kMostWords = 64;
// No text a library answers into a module buffer is longer than this (the
// third generation's largest).
constexpr size_t kLongestText = 4096;

// A number of a parameter's kind, within its C type's range.
void CheckNumber(const Node& n, Kind kind) {
    switch (kind) {
        case Kind::U16:
            n.integer(0, 0xFFFF, "a number from 0 to 65535");
            break;
        case Kind::U8:
            n.integer(0, 0xFF, "a number from 0 to 255");
            break;
        case Kind::I32:
            n.integer(-2147483648LL, 2147483647LL, "a number from -2147483648 to 2147483647");
            break;
        case Kind::Real:  // a float
            n.number(-3.4028234663852886e38, 3.4028234663852886e38);
            break;
        default:
            n.integer(0, 0xFFFFFFFFLL, "a number from 0 to 4294967295");
    }
}

void CheckWords(const Node& n) {
    if (!json_is_array(n.json()) || json_array_size(n.json()) == 0 || json_array_size(n.json()) > kMostWords) {
        n.fail("from 1 to 64 words");
    }
    for (size_t i = 0; i < json_array_size(n.json()); ++i) {
        CheckNumber(n.element(i), Kind::U32);
    }
}

bool Null(const Node& n) { return json_is_null(n.json()); }

// What went in: every number, the size of a text buffer ("length"), the
// words of a write, and null for a null pointer.
void CheckInputs(const Node& in, const Signature& s) {
    std::vector<std::string> names;
    for (const Param& p : s.params) {
        names.push_back(p.name);
    }
    in.object(names);
    for (const Param& p : s.params) {
        const Node n = in.member(p.name.c_str());
        if (!p.pointer) {
            CheckNumber(n, p.kind);
        } else if (p.name == "length" && !Null(n)) {
            CheckNumber(n, Kind::U32);
        } else if (p.name == "words" && s.writes && !Null(n)) {
            CheckWords(n);
        } else if (n.present() && !Null(n)) {
            n.fail("null (a null pointer) or nothing");
        }
    }
}

// A text that came out: "buffer" (UTF-8), or "hex" (its bytes), and
// "terminated": false when the buffer held no terminator. It fits the
// buffer that went in.
void CheckText(const Node& out, const Node& in) {
    const Node buffer = out.member("buffer");
    const Node hex = out.member("hex");
    if (buffer.present() && hex.present()) {
        hex.fail("no \"hex\" beside \"buffer\"");
    }
    size_t bytes = buffer.present() ? json_string_length(buffer.json()) : 0;
    if (buffer.present()) {
        buffer.text();
    }
    if (hex.present()) {
        const std::string digits = hex.text();
        if (digits.size() % 2 != 0 || !std::all_of(digits.begin(), digits.end(), [](char c) {
                return std::isxdigit(static_cast<unsigned char>(c)) != 0;
            })) {
            hex.fail("pairs of hexadecimal digits");
        }
        bytes = digits.size() / 2;
    }
    if (out.member("terminated").present() && out.member("terminated").boolean()) {
        out.member("terminated").fail("false, or nothing for a terminated text");
    }
    const json_t* size = in.member("length").json();
    const size_t room = json_is_integer(size) ? static_cast<size_t>(json_integer_value(size)) : 0;
    if (bytes > std::min(room, kLongestText)) {
        (hex.present() ? hex : buffer).fail("a text that fits the call's buffer of " + std::to_string(room) + " bytes");
    }
}

// What came out: an output of each pointer that was not null.
void CheckOutputs(const Node& out, const Signature& s, const Node& in) {
    std::vector<std::string> names;
    for (const Param& p : s.params) {
        if (p.pointer && !Null(in.member(p.name.c_str())) && !(p.name == "words" && s.writes)) {
            if (p.kind == Kind::Text) {
                names.insert(names.end(), {"buffer", "hex", "terminated"});
            } else {
                names.push_back(p.name);
            }
        }
    }
    out.object(names);
    for (const Param& p : s.params) {
        const Node n = out.member(p.name.c_str());
        if (p.kind == Kind::Text && p.pointer && !Null(in.member(p.name.c_str()))) {
            CheckText(out, in);
        } else if (n.present() && p.name == "words") {
            CheckWords(n);
        } else if (n.present()) {
            CheckNumber(n, p.kind);
        }
    }
}

// One answer: its status (none from a function without a result), its
// outputs and how long it took.
void CheckAnswer(const Node& answer, const Signature& s, const Node& in) {
    if (s.returns) {
        answer.member("status").integer(0, 0xFFFFFFFFLL, "a status from 0 to 4294967295");
    } else if (answer.member("status").present()) {
        answer.member("status").fail("nothing, as " + s.function + " answers no status");
    }
    CheckOutputs(answer.member("out"), s, in);
    if (answer.member("took_us").present()) {
        answer.member("took_us").integer(0, kLongestCall, "microseconds from 0 to 3600000000");
    }
}

}  // namespace

const Signature& CheckCall(const Node& call, const Library& library) {
    call.object({"function", "in", "status", "out", "took_us", "answers"});
    const Node function = call.member("function");
    const Signature* s = library.find(function.text());
    if (s == nullptr) {
        function.fail(std::string("a function of ") + library.name);
    }
    const Node in = call.member("in");
    CheckInputs(in, *s);
    const Node answers = call.member("answers");
    if (!answers.present()) {
        CheckAnswer(call, *s, in);
        return *s;
    }
    for (const char* single : {"status", "out", "took_us"}) {
        if (call.member(single).present()) {
            call.member(single).fail("nothing beside \"answers\"");
        }
    }
    if (answers.arraySize() == 0) {
        answers.fail("at least one answer");
    }
    for (size_t i = 0; i < answers.arraySize(); ++i) {
        const Node answer = answers.element(i);
        answer.object({"status", "out", "took_us", "times"});
        CheckAnswer(answer, *s, in);
        if (answer.member("times").present()) {
            answer.member("times").integer(1, 0xFFFFFFFFLL, "a number from 1 to 4294967295");
        }
    }
    return *s;
}

}  // namespace vorarec
