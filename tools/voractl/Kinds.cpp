#include "Kinds.h"

#include <strings.h>

namespace voractl {

namespace {

// A word stands for one state of one kind only: "low" is a level, never a
// direction, so `set GPIO4/Dir=low` cannot turn an input into an output.
const TwoStateKind kTwoStateKinds[] = {
    {"I/O", "a direction", {"in", nullptr}, {"out", nullptr}},
    {"H/L", "a level", {"high", "active"}, {"low", "inactive"}},
    {"ON/OFF", "an on/off state", {"on", "true"}, {"off", "false"}},
};

bool Among(const char* const (&words)[2], const char* digit, const std::string& word) {
    if (word == digit) {
        return true;
    }
    for (const char* known : words) {
        if (known != nullptr && strcasecmp(known, word.c_str()) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

const TwoStateKind kPlainTwoState = {"", "a two-state value", {nullptr, nullptr}, {nullptr, nullptr}};

std::optional<int> TwoStateKind::state(const std::string& word) const {
    // strcasecmp stops at a NUL, which a command-line word cannot hold.
    if (Among(one, "1", word)) {
        return 1;
    }
    if (Among(zero, "0", word)) {
        return 0;
    }
    return std::nullopt;
}

std::string TwoStateKind::words() const {
    std::string text;
    for (size_t i = 0; i < 2 && one[i] != nullptr; ++i) {
        text += std::string(one[i]) + "/" + zero[i] + ", ";
    }
    if (!text.empty()) {
        text.replace(text.size() - 2, 2, " or ");
    }
    return text + "1/0";
}

const TwoStateKind* TwoStateKindOf(const std::string& unit) {
    for (const TwoStateKind& kind : kTwoStateKinds) {
        if (unit == kind.unit) {
            return &kind;
        }
    }
    return nullptr;
}

}  // namespace voractl
