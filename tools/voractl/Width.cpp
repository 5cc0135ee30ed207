#include "Width.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace voractl {

namespace {

constexpr size_t kDefaultWidth = 80;
constexpr size_t kNarrowest = 40;

// COLUMNS as `ls` reads it: a whole number from 1; anything else is unset.
size_t Columns() {
    const char* text = std::getenv("COLUMNS");
    if (text == nullptr || *text < '0' || *text > '9') {
        return 0;
    }
    char* end = nullptr;
    errno = 0;
    const unsigned long columns = std::strtoul(text, &end, 10);
    return *end == '\0' && errno == 0 ? columns : 0;
}

}  // namespace

size_t OutputWidth(std::FILE* out) {
    winsize size{};
    size_t width = 0;
    if (isatty(fileno(out)) == 1 && ioctl(fileno(out), TIOCGWINSZ, &size) == 0) {
        width = size.ws_col;
    }
    if (width == 0) {
        width = Columns();
    }
    if (width == 0) {
        width = kDefaultWidth;
    }
    return width < kNarrowest ? kNarrowest : width;
}

size_t DisplayWidth(const std::string& text) {
    size_t width = 0;
    for (unsigned char c : text) {
        width += (c & 0xC0) != 0x80 ? 1 : 0;
    }
    return width;
}

std::string Shortened(const std::string& text, size_t width) {
    if (DisplayWidth(text) <= width || width == 0) {
        return text;
    }
    size_t kept = 0;
    size_t end = 0;
    // Whole characters only: a byte that continues one is never the first cut.
    while (end < text.size()) {
        const bool starts = (static_cast<unsigned char>(text[end]) & 0xC0) != 0x80;
        if (starts && ++kept == width) {
            break;
        }
        ++end;
    }
    return text.substr(0, end) + "…";
}

std::vector<std::string> Wrapped(const std::string& label, const std::vector<std::string>& words, size_t width) {
    const std::string hang(DisplayWidth(label), ' ');
    std::vector<std::string> lines{label};
    bool empty = true;  // no word on the line yet
    for (const std::string& word : words) {
        if (!empty && DisplayWidth(lines.back()) + 1 + DisplayWidth(word) > width) {
            lines.push_back(hang);
            empty = true;
        }
        lines.back() += (empty ? "" : " ") + word;
        empty = false;
    }
    return lines;
}

std::vector<std::string> Wrapped(const std::string& label, const std::string& text, size_t width) {
    std::vector<std::string> words;
    size_t start = 0;
    while (start < text.size()) {
        const size_t blank = std::min(text.find(' ', start), text.size());
        words.push_back(text.substr(start, blank - start));
        start = blank + 1;
    }
    return Wrapped(label, words, width);
}

}  // namespace voractl
