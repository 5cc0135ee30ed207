#include "Printable.h"

#include <cstdio>

namespace voractl {

namespace {

bool Continuation(unsigned char c) { return (c & 0xC0) == 0x80; }

// The length of the well-formed UTF-8 sequence at `at` (no overlong form,
// no surrogate, nothing above U+10FFFF), or 0 when there is none.
size_t SequenceLength(const std::string& text, size_t at) {
    const auto byte = [&](size_t i) {
        return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0;
    };
    const unsigned char lead = byte(0);
    if (lead < 0x80) {
        return 1;
    }
    size_t length = 0;
    unsigned char low = 0x80;  // the second byte's range
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (byte(1) < low || byte(1) > high) {
        return 0;
    }
    for (size_t i = 2; i < length; ++i) {
        if (!Continuation(byte(i))) {
            return 0;
        }
    }
    return length;
}

// The code point of a well-formed sequence.
unsigned CodePoint(const std::string& text, size_t at, size_t length) {
    static const unsigned char kLeadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    unsigned point = static_cast<unsigned char>(text[at]) & kLeadBits[length];
    for (size_t i = 1; i < length; ++i) {
        point = (point << 6) | (static_cast<unsigned char>(text[at + i]) & 0x3F);
    }
    return point;
}

// What a terminal would obey rather than show: controls; the line and
// paragraph separators; the bidirectional embeddings, overrides and
// isolates, which would reorder the rest of the line.
bool Obeyed(unsigned point) {
    return point < 0x20 || (point >= 0x7F && point <= 0x9F) ||
           (point >= 0x2028 && point <= 0x202E) || (point >= 0x2066 && point <= 0x2069);
}

void Escape(std::string& out, unsigned char c) {
    switch (c) {
        case 0x1B: out += "\\e"; return;
        case '\n': out += "\\n"; return;
        case '\r': out += "\\r"; return;
        case '\t': out += "\\t"; return;
        default: {
            char hex[5];
            std::snprintf(hex, sizeof hex, "\\x%02x", c);
            out += hex;
        }
    }
}

}  // namespace

std::string Printable(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const size_t length = SequenceLength(text, at);
        if (length == 0) {
            Escape(out, static_cast<unsigned char>(text[at++]));
        } else if (text[at] == '\\') {
            out += "\\\\";
            ++at;
        } else if (Obeyed(CodePoint(text, at, length))) {
            for (size_t end = at + length; at < end; ++at) {
                Escape(out, static_cast<unsigned char>(text[at]));
            }
        } else {
            out.append(text, at, length);
            at += length;
        }
    }
    return out;
}

}  // namespace voractl
