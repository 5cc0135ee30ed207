// gzip, as HTTP's Content-Encoding carries it.
#pragma once

#include <string>

namespace voractl {

// The gzip stream of `text`; empty when zlib fails (then send it plain).
std::string Gzip(const std::string& text);

}  // namespace voractl
