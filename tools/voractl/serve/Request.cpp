#include "Request.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <vector>

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

// One element of a comma-separated header: its value (media range or
// content coding, in lower case) and its q-value.
struct Choice {
    std::string value;
    double q;
};

// A q-value is a number from 0 to 1 (RFC 9110, 12.4.2). One that is not is
// read as 0: what a client cannot say clearly it is not given.
double QValue(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const double q = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno != 0 || !(q >= 0.0 && q <= 1.0)) {
        return 0.0;
    }
    return q;
}

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

}  // namespace

MetricsFormat PreferredFormat(const char* accept) {
    MetricsFormat best = MetricsFormat::Text;
    double bestQ = 0.0;
    for (const Choice& choice : Choices(accept)) {
        MetricsFormat format;
        if (choice.value == "application/openmetrics-text") {
            format = MetricsFormat::OpenMetrics;
        } else if (choice.value == "text/plain" || choice.value == "text/*" ||
                   choice.value == "*/*") {
            format = MetricsFormat::Text;
        } else {
            continue;
        }
        if (choice.q > bestQ) {
            best = format;
            bestQ = choice.q;
        }
    }
    return best;
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

std::optional<uint64_t> SinceArgument(const char* text) {
    if (text == nullptr) {
        return 0;
    }
    const std::string digits = text;
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    errno = 0;
    const unsigned long long since = std::strtoull(digits.c_str(), nullptr, 10);
    if (errno == ERANGE) {
        return std::nullopt;
    }
    return since;
}

}  // namespace voractl
