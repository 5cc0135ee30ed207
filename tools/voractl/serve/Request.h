// What an HTTP request to the exporter asks for, read from its headers and
// arguments the way HTTP defines them: the metrics format by Accept, gzip
// by Accept-Encoding (both with their q-values, names in any case), and the
// board page's sample sequence number.
#pragma once

#include <cstdint>
#include <optional>

namespace voractl {

enum class MetricsFormat { Text, OpenMetrics };

// The format the client prefers among those served: OpenMetrics when it
// ranks application/openmetrics-text above text/plain (the text format also
// stands for "*/*" and "text/*"); the text format when the header is
// missing or names neither, as Prometheus's own exporters answer. Of two
// with the same q-value the first listed wins.
MetricsFormat PreferredFormat(const char* accept);

// True when Accept-Encoding lets the answer be gzipped: "gzip" (or its
// alias "x-gzip") or else "*" with a q-value above 0.
bool AcceptsGzip(const char* acceptEncoding);

// The "since" argument of /api/v1/samples: a decimal number; a missing one
// is 0. Anything else (a sign, a letter, more than 64 bits) is no number.
std::optional<uint64_t> SinceArgument(const char* text);

}  // namespace voractl
