// How wide voractl's human output may be, and laying text out within it,
// as `sensors` and `ls` fit the terminal.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace voractl {

// The width to fit `out` to: the terminal's when `out` is one, else
// COLUMNS when it is a whole number from 1, else 80. Narrower than 40 is
// taken as 40, where no useful table fits anyway.
size_t OutputWidth(std::FILE* out);

// The display width of UTF-8 text: its number of characters.
size_t DisplayWidth(const std::string& text);

// `text` cut to `width` characters, its last one "…" when anything was cut.
std::string Shortened(const std::string& text, size_t width);

// `label` then `text`, broken at blanks into lines of at most `width`
// characters; further lines start under the text. A word longer than a line
// is kept whole, never cut: it runs past the width on a line of its own.
std::vector<std::string> Wrapped(const std::string& label, const std::string& text, size_t width);
// The same with the words given: a word may hold blanks ("--timeout S").
std::vector<std::string> Wrapped(const std::string& label, const std::vector<std::string>& words, size_t width);

}  // namespace voractl
