#include "Exposition.h"

#include "Gzip.h"
#include "Request.h"

namespace voractl {

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

Exposition::Exposition(std::string text) {
    std::call_once(forms_[0].built, [&] { forms_[0].bytes = std::move(text); });
}

const Exposition::Form& Exposition::built(MetricsFormat format, bool gzip) const {
    const bool open = format == MetricsFormat::OpenMetrics;
    Form& form = forms_[(open ? 2 : 0) + (gzip ? 1 : 0)];
    std::call_once(form.built, [&] {
        if (gzip) {
            form.bytes = Gzip(built(format, false).bytes);
        } else {
            form.bytes = OpenMetricsText(forms_[0].bytes);  // the text form is always built
        }
    });
    return form;
}

std::shared_ptr<const std::string> Exposition::form(MetricsFormat format, bool gzip) const {
    const Form& form = built(format, gzip);
    if (gzip && form.bytes.empty()) {
        return nullptr;
    }
    // Shares ownership of the whole reading.
    return std::shared_ptr<const std::string>(shared_from_this(), &form.bytes);
}

HttpReply Exposition::answer(MetricsFormat format, bool gzip) const {
    std::shared_ptr<const std::string> packed = gzip ? form(format, true) : nullptr;
    return packed != nullptr ? HttpReply{200, std::move(packed), Type(format), true}
                             : HttpReply{200, form(format, false), Type(format), false};
}

const char* Exposition::Type(MetricsFormat format) {
    return format == MetricsFormat::OpenMetrics
               ? "application/openmetrics-text; version=1.0.0; charset=utf-8"
               : "text/plain; version=0.0.4; charset=utf-8";
}

std::string OpenMetricsText(const std::string& text) {
    // Only counters end in "_total" in our exposition (the naming guide's
    // rule), so every such family is a counter's.
    std::string out;
    out.reserve(text.size() + 8);
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        const size_t name = start + 7;  // after "# HELP " or "# TYPE "
        size_t cut = std::string::npos;
        if (text.compare(start, 7, "# HELP ") == 0 || text.compare(start, 7, "# TYPE ") == 0) {
            const size_t space = text.find(' ', name);
            if (space != std::string::npos && space < end && space >= name + 6 &&
                text.compare(space - 6, 6, "_total") == 0) {
                cut = space - 6;
            }
        }
        if (cut == std::string::npos) {
            out.append(text, start, end - start);
        } else {
            out.append(text, start, cut - start).append(text, cut + 6, end - cut - 6);
        }
        out += '\n';
        start = end + 1;
    }
    return out + "# EOF\n";
}

}  // namespace voractl
