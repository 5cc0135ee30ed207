#include "Request.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace voractl {

namespace {

std::string Lower(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

std::string Trim(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) {
        return "";
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

double QValue(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const double q = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno != 0 || !(q >= 0.0 && q <= 1.0)) {
        return 0.0;
    }
    return q;
}

}  // namespace

std::vector<Choice> Choices(const char* header) {
    std::vector<Choice> out;
    if (header == nullptr) {
        return out;
    }
    const std::string text = header;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(',', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        const std::string element = text.substr(start, end - start);
        start = end + 1;
        size_t semicolon = element.find(';');
        Choice choice{Lower(Trim(element.substr(0, semicolon))), 1.0};
        if (choice.value.empty()) {
            continue;
        }
        while (semicolon != std::string::npos) {
            const size_t next = element.find(';', semicolon + 1);
            const std::string parameter = element.substr(semicolon + 1, next - semicolon - 1);
            semicolon = next;
            const size_t equals = parameter.find('=');
            if (equals != std::string::npos && Lower(Trim(parameter.substr(0, equals))) == "q") {
                choice.q = QValue(Trim(parameter.substr(equals + 1)));
            }
        }
        out.push_back(choice);
    }
    return out;
}

bool AcceptsGzip(const char* acceptEncoding) {
    std::optional<double> named, any;
    for (const Choice& choice : Choices(acceptEncoding)) {
        if (choice.value == "gzip" || choice.value == "x-gzip") {
            named = choice.q;
        } else if (choice.value == "*") {
            any = choice.q;
        }
    }
    return named ? *named > 0.0 : any.value_or(0.0) > 0.0;
}

double ScrapeBudget(const char* timeoutHeader) {
    constexpr double kDefault = 10;
    constexpr double kMost = 120;
    constexpr double kMargin = 0.5;
    double timeout = kDefault;
    if (timeoutHeader != nullptr) {
        char* end = nullptr;
        errno = 0;
        const double given = std::strtod(timeoutHeader, &end);
        if (end != timeoutHeader && *end == '\0' && errno == 0 && given > 0 && std::isfinite(given)) {
            timeout = std::min(given, kMost);
        }
    }
    return std::max(timeout - kMargin, timeout / 2);
}

}  // namespace voractl
