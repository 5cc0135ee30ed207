// What the exporter serves at each path: "/" the board page (with its
// script and style), "/metrics" the board's metrics in the format and
// encoding the scraper asks for, "/api/v1/..." the page's JSON.
#pragma once

#include <cstdint>
#include <optional>

#include "Http.h"

namespace voractl {

class Exporter;
class Sampler;

HttpServer::Site ExporterSite(Exporter& exporter, Sampler& sampler);

// The "since" argument of /api/v1/samples: a decimal number; a missing one
// is 0. Anything else (a sign, a letter, more than 64 bits) is no number.
std::optional<uint64_t> SinceArgument(const char* text);

}  // namespace voractl
