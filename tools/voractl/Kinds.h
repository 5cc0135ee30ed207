// What an item's unit says its values are. The capability document gives
// every element a unit ("u", else its group's "bu"); a two-state item's unit
// says which two states it has, and so which words stand for them. Each
// kind's words are written here once: the word shown for each state, and
// every word a value is taken from.
#pragma once

#include <optional>
#include <string>

namespace voractl {

struct TwoStateKind {
    const char* unit;     // as the document publishes it: "I/O"
    const char* name;     // what a value of it is, for messages: "a direction"
    const char* one[2];   // the words for 1, the first of them the one shown
    const char* zero[2];  // the words for 0; a null word is none

    // 0 or 1 for "0", "1" or one of the kind's words in any case; none for
    // any other text, a word of another kind among them.
    std::optional<int> state(const std::string& word) const;
    // The words the kind takes, for messages: "in/out or 1/0".
    std::string words() const;
    // How `state` (0 or 1) is shown; null when the kind has no word for it.
    const char* shown(int state) const { return state == 1 ? one[0] : zero[0]; }
};

// The two-state kind `unit` stands for; null for any other unit.
const TwoStateKind* TwoStateKindOf(const std::string& unit);

// A two-state value ("bv") whose unit is none of the kinds': 0 and 1 only.
extern const TwoStateKind kPlainTwoState;

}  // namespace voractl
