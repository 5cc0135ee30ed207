#include "Site.h"

#include "Exporter.h"
#include "PageAssets.h"
#include "Request.h"
#include "Sampler.h"

namespace voractl {

namespace {

const char kJson[] = "application/json";

// The scrape's reading in the form the scraper asks for: shared with every
// other scrape of the same reading that asks for the same.
HttpReply Metrics(Exporter& exporter, const HttpRequest& request) {
    const std::shared_ptr<const Exposition> reading = exporter.scrape(request.arrived);
    const MetricsFormat format = PreferredFormat(request.header("Accept"));
    HttpReply reply{200, nullptr, Exposition::Type(format), false};
    if (AcceptsGzip(request.header("Accept-Encoding"))) {
        reply.body = reading->form(format, true);
        reply.gzip = reply.body != nullptr;
    }
    if (reply.body == nullptr) {
        reply.body = reading->form(format, false);
    }
    return reply;
}

}  // namespace

HttpServer::Site ExporterSite(Exporter& exporter, Sampler& sampler) {
    return [&exporter, &sampler](const HttpRequest& request) {
        const std::string& path = request.path;
        if (path == "/metrics") {
            return Metrics(exporter, request);
        }
        if (const PageAsset* asset = FindPageAsset(path)) {
            return HttpReply::Content(request, asset->text, asset->type);
        }
        if (path == "/api/v1/document") {
            return HttpReply::Content(request, exporter.document(), kJson);
        }
        if (path == "/api/v1/library") {
            return HttpReply::Content(request, exporter.library(), kJson);
        }
        if (path == "/api/v1/items") {
            return HttpReply::Content(request, sampler.items(), kJson);
        }
        if (path == "/api/v1/samples") {
            const std::optional<uint64_t> since = SinceArgument(request.argument("since"));
            if (!since) {
                return HttpReply::Text(400,
                                       "since: give the sequence number of the last sample seen.\n");
            }
            return HttpReply::Content(request, sampler.samples(*since), kJson);
        }
        return HttpReply::Text(404, "Not found: see / and /metrics.\n");
    };
}

}  // namespace voractl
