// Colour in voractl's human output: only on a terminal (unless asked for),
// never when NO_COLOR is set.
#pragma once

#include <cstdio>
#include <string>

namespace voractl {

enum class ColorMode { Auto, Always, Never };

// The mode named by --color: "auto", "always" or "never"; throws a usage
// ToolError otherwise.
ColorMode ParseColorMode(const std::string& text);

class Style {
public:
    // Colour is used when `mode` is Always, or Auto and `out` is a terminal
    // whose TERM is not "dumb"; never when NO_COLOR is set, whatever its value.
    Style(ColorMode mode, std::FILE* out);
    explicit Style(bool color = false) : color_(color) {}

    bool color() const { return color_; }
    std::string heading(const std::string& text) const { return wrap("1", text); }
    std::string subheading(const std::string& text) const { return wrap("1;36", text); }
    std::string dim(const std::string& text) const { return wrap("2", text); }
    std::string failed(const std::string& text) const { return wrap("31", text); }
    std::string changed(const std::string& text) const { return wrap("1;33", text); }

private:
    std::string wrap(const char* code, const std::string& text) const;
    bool color_ = false;
};

}  // namespace voractl
