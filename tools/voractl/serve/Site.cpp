#include "Site.h"

#include "Exporter.h"
#include "PageAssets.h"
#include "Request.h"
#include "Sampler.h"

namespace voractl {

namespace {

const char kJson[] = "application/json";

// Answers with the scrape's reading in the form the scraper asks for:
// shared with every other scrape of the same reading that asks for the same.
void Metrics(Exporter& exporter, const HttpRequest& request, const HttpServer::Reply& reply) {
    const MetricsFormat format = PreferredFormat(request.header("Accept"));
    const bool gzip = AcceptsGzip(request.header("Accept-Encoding"));
    exporter.scrape(request.arrived, [reply, format, gzip](std::shared_ptr<const Exposition> reading,
                                                           std::exception_ptr error) {
        try {
            if (error != nullptr) {
                std::rethrow_exception(error);
            }
            HttpReply answer{200, nullptr, Exposition::Type(format), false};
            if (gzip) {
                answer.body = reading->form(format, true);
                answer.gzip = answer.body != nullptr;
            }
            if (answer.body == nullptr) {
                answer.body = reading->form(format, false);
            }
            reply(answer);
        } catch (const std::exception& e) {
            reply(HttpReply::Text(500, std::string("The board could not be read: ") + e.what() +
                                           "\n"));
        }
    });
}

}  // namespace

HttpServer::Site ExporterSite(Exporter& exporter, Sampler& sampler) {
    return [&exporter, &sampler](const HttpRequest& request, const HttpServer::Reply& reply) {
        const std::string& path = request.path;
        if (path == "/metrics") {
            Metrics(exporter, request, reply);
        } else if (const PageAsset* asset = FindPageAsset(path)) {
            reply(HttpReply::Content(request, asset->text, asset->type));
        } else if (path == "/api/v1/document") {
            reply(HttpReply::Content(request, exporter.document(), kJson));
        } else if (path == "/api/v1/library") {
            reply(HttpReply::Content(request, exporter.library(), kJson));
        } else if (path == "/api/v1/items") {
            reply(HttpReply::Content(request, sampler.items(), kJson));
        } else if (path == "/api/v1/samples") {
            const std::optional<uint64_t> since = SinceArgument(request.argument("since"));
            reply(since ? HttpReply::Content(request, sampler.samples(*since), kJson)
                        : HttpReply::Text(400, "since: give the sequence number of the last sample "
                                               "seen.\n"));
        } else {
            reply(HttpReply::Text(404, "Not found: see / and /metrics.\n"));
        }
    };
}

}  // namespace voractl
