#include "Site.h"

#include <cerrno>
#include <cstdlib>
#include <string>

#include "Exporter.h"
#include "PageAssets.h"
#include "Request.h"
#include "Sampler.h"
#include "ToolError.h"

namespace voractl {

namespace {

const char kJson[] = "application/json";

HttpReply BoardFailure(const std::exception_ptr& error) {
    const Exit failure = ExitFor(error);
    return HttpReply::Text(500, std::string("The board could not be read: ") + failure.reason +
                                    failure.detail + "\n");
}

// /metrics: a fresh reading of the board, shared with every scrape that
// arrives while it is read, in the format and encoding the scraper asks
// for; or, when none has ended within the scrape's timeout, voradrv_up 0.
void Metrics(Exporter& exporter, const HttpRequest& request, const HttpServer::Reply& reply) {
    const MetricsFormat format = PreferredFormat(request.header("Accept"));
    const bool gzip = AcceptsGzip(request.header("Accept-Encoding"));
    const double budget = ScrapeBudget(request.header("X-Prometheus-Scrape-Timeout-Seconds"));
    const auto deadline = request.arrived + std::chrono::duration_cast<Clock::duration>(
                                                std::chrono::duration<double>(budget));
    exporter.scrape(request.arrived, deadline, [reply, format, gzip](
                                         std::shared_ptr<const Exposition> reading,
                                         const std::exception_ptr& error) {
        reply(error != nullptr ? BoardFailure(error) : reading->answer(format, gzip));
    });
}

void Answer(Exporter& exporter, Sampler& sampler, const HttpRequest& request,
            const HttpServer::Reply& reply) {
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
        sampler.items([request, reply](std::string items) {
            reply(HttpReply::Content(request, std::move(items), kJson));
        });
    } else if (path == "/api/v1/samples") {
        const std::optional<uint64_t> since = SinceArgument(request.argument("since"));
        reply(since ? HttpReply::Content(request, sampler.samples(*since), kJson)
                    : HttpReply::Text(400, "since: give the sequence number of the last sample "
                                           "seen.\n"));
    } else {
        reply(HttpReply::Text(404, "Not found: see / and /metrics.\n"));
    }
}

}  // namespace

HttpServer::Site ExporterSite(Exporter& exporter, Sampler& sampler) {
    return [&exporter, &sampler](const HttpRequest& request, const HttpServer::Reply& reply) {
        try {
            Answer(exporter, sampler, request, reply);
        } catch (...) {
            reply(BoardFailure(std::current_exception()));
        }
    };
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
