#include "Style.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "ToolError.h"

namespace voractl {

ColorMode ParseColorMode(const std::string& text) {
    if (text == "auto") {
        return ColorMode::Auto;
    }
    if (text == "always") {
        return ColorMode::Always;
    }
    if (text == "never") {
        return ColorMode::Never;
    }
    throw ToolError("--color must be auto, always or never, not \"" + text + "\"", true);
}

Style::Style(ColorMode mode, std::FILE* out) {
    if (std::getenv("NO_COLOR") != nullptr || mode == ColorMode::Never) {
        color_ = false;
    } else if (mode == ColorMode::Always) {
        color_ = true;
    } else {
        const char* term = std::getenv("TERM");
        color_ = isatty(fileno(out)) == 1 && (term == nullptr || std::strcmp(term, "dumb") != 0);
    }
}

std::string Style::wrap(const char* code, const std::string& text) const {
    if (!color_ || text.empty()) {
        return text;
    }
    return std::string("\033[") + code + "m" + text + "\033[0m";
}

}  // namespace voractl
