// The exporter's HTTP side, on libmicrohttpd: "/" the board page (with its
// script and style), "/metrics" the board's metrics (OpenMetrics when the
// scraper asks for it), "/api/v1/..." the page's JSON; gzip when the client
// accepts it. Read-only: GET and HEAD, nothing else. Every answer carries a
// content security policy that allows nothing from elsewhere.
#pragma once

#include <sys/socket.h>

#include <cstdint>
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
    // What the server answers with: the metrics text, fresh for each
    // scrape, and the board page's JSON (document, library, items, samples
    // after a sequence number).
    struct Site {
        std::function<std::shared_ptr<const std::string>()> metrics;
        std::function<std::string()> document;
        std::function<std::string()> library;
        std::function<std::string()> items;
        std::function<std::string(uint64_t)> samples;
    };

    // Starts serving on its own threads, with TLS and basic auth as `web`
    // says; throws ToolError when the address cannot be had or TLS cannot
    // start with the certificate and key.
    HttpServer(const ListenAddress& listen, const HttpLimits& limits, const WebConfig& web,
               Site site);
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
