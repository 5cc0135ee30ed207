// One reading of the board in the forms scrapers ask for: the text format
// 0.0.4 or OpenMetrics 1.0, plain or gzipped. Each form is built the first
// time a scrape asks for it and then shared, unchanged, by every scrape of
// the same reading, so a burst of Prometheus scrapes (OpenMetrics, gzip)
// costs one conversion and one compression.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "Http.h"

namespace voractl {

enum class MetricsFormat { Text, OpenMetrics };

// The format a scraper's Accept header prefers among those served:
// OpenMetrics when it ranks application/openmetrics-text above text/plain
// (the text format also stands for "*/*" and "text/*"); the text format
// when the header is missing or names neither, as Prometheus's own
// exporters answer. Of two with the same q-value the first listed wins.
MetricsFormat PreferredFormat(const char* accept);

class Exposition : public std::enable_shared_from_this<Exposition> {
public:
    // `text`: the reading in the text format.
    explicit Exposition(std::string text);

    // The answer to a scrape: the reading in `format`, gzipped when `gzip`
    // (and gzip works), its body shared with the other scrapes'.
    HttpReply answer(MetricsFormat format, bool gzip) const;

    // The reading in `format`, gzipped when `gzip`; it lives as long as the
    // pointer is held. Null when gzip failed (send it plain).
    std::shared_ptr<const std::string> form(MetricsFormat format, bool gzip) const;

    // The Content-Type of `format`.
    static const char* Type(MetricsFormat format);

private:
    struct Form {
        std::once_flag built;
        std::string bytes;
    };
    const Form& built(MetricsFormat format, bool gzip) const;

    mutable Form forms_[4];  // text, text gzipped, OpenMetrics, OpenMetrics gzipped
};

// The text format as OpenMetrics 1.0 writes it: a counter's family named
// without its "_total", and "# EOF" at the end.
std::string OpenMetricsText(const std::string& text);

}  // namespace voractl
