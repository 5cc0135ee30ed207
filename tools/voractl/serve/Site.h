// What the exporter serves at each path: "/" the board page (with its
// script and style), "/metrics" the board's metrics in the format and
// encoding the scraper asks for, "/api/v1/..." the page's JSON.
#pragma once

#include "Http.h"

namespace voractl {

class Exporter;
class Sampler;

HttpServer::Site ExporterSite(Exporter& exporter, Sampler& sampler);

}  // namespace voractl
