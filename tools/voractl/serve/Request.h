// A request's headers read the way HTTP defines them: the choices a header
// such as Accept or Accept-Encoding lists, with their q-values and names in
// any case, and whether the answer may be gzipped.
#pragma once

#include <string>
#include <vector>

namespace voractl {

// One choice of such a header: its value (a media range or content coding)
// in lower case, and its q-value: 1 when none is given, 0 when it is no
// number from 0 to 1 (RFC 9110, 12.4.2), since what a client cannot say
// clearly it is not given.
struct Choice {
    std::string value;
    double q;
};

// The header's choices in the order listed; none for a missing header.
std::vector<Choice> Choices(const char* header);

// How long a scrape may wait for the board, in seconds, from Prometheus's
// X-Prometheus-Scrape-Timeout-Seconds: the timeout less half a second (a
// margin for the answer to travel), and never less than half of it; 10 s
// (Prometheus's default timeout) when the header is missing or is no
// positive number; 120 s at most.
double ScrapeBudget(const char* timeoutHeader);

// True when Accept-Encoding lets the answer be gzipped: "gzip" (or its
// alias "x-gzip") or else "*" with a q-value above 0.
bool AcceptsGzip(const char* acceptEncoding);

}  // namespace voractl
