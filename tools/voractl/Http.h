// The exporter's HTTP side, on libmicrohttpd: "/" a landing page, "/metrics"
// the board's metrics (OpenMetrics when the scraper asks for it, gzip when it
// accepts it). Read-only: GET and HEAD, nothing else.
#pragma once

#include <sys/socket.h>

#include <functional>
#include <memory>
#include <string>

#include "WebConfig.h"

struct MHD_Daemon;

namespace voractl {

// Where to listen: "ADDR:PORT", "[IPv6]:PORT" or ":PORT" (every address).
struct ListenAddress {
    sockaddr_storage address{};
    socklen_t length = 0;
    std::string text;  // as given, for messages
};
// Throws a usage ToolError naming what is wrong.
ListenAddress ParseListenAddress(const std::string& text);

// What a request may cost the exporter.
struct HttpLimits {
    unsigned connections = 64;     // open at once; more are refused
    unsigned timeoutSeconds = 10;  // an idle or slow client is cut after this
    size_t requestBytes = 16384;   // request line and headers; more get 431 or 414
};

class HttpServer {
public:
    // The metrics text, fresh for each scrape.
    using Scrape = std::function<std::shared_ptr<const std::string>()>;

    // Starts serving on its own threads, with TLS and basic auth as `web`
    // says; throws ToolError when the address cannot be had or TLS cannot
    // start with the certificate and key.
    HttpServer(const ListenAddress& listen, const HttpLimits& limits, const WebConfig& web,
               Scrape scrape);
    // Stops: the listening socket and every connection closed, the
    // connections' threads ended.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    // The port actually bound (the one asked for, or the system's choice
    // for port 0).
    unsigned port() const;

private:
    struct Handler;
    std::unique_ptr<Handler> handler_;
    MHD_Daemon* daemon_ = nullptr;
};

}  // namespace voractl
