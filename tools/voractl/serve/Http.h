// The exporter's HTTP side, on libmicrohttpd. One thread serves every
// connection (epoll), so slow or idle clients cost a socket, not a thread;
// what a request asks of the site (reading the board) runs on worker
// threads while its connection waits aside, and basic-auth checks on a
// thread of their own. Read-only: GET and HEAD, no request body. Every
// answer carries the same protective headers: its type is what it says,
// nothing from elsewhere runs in it, and nothing keeps it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ListenAddress.h"
#include "WebConfig.h"

namespace voractl {

class HttpCore;

// What a request asks, copied out of the connection so that it can be
// answered on another thread.
struct HttpRequest {
    std::chrono::steady_clock::time_point arrived;  // when its line and headers were in
    std::string path;
    std::vector<std::pair<std::string, std::string>> headers;
    std::vector<std::pair<std::string, std::string>> arguments;  // of the query

    // The header's value (its name in any case), or null.
    const char* header(const std::string& name) const;
    // The query argument's value, or null.
    const char* argument(const std::string& name) const;
};

// An answer. Its body is sent from where it is, never copied, and may be
// shared with other answers (the forms of one reading of the board are).
struct HttpReply {
    unsigned status = 200;
    std::shared_ptr<const std::string> body;
    const char* type = nullptr;  // Content-Type; null: plain text
    bool gzip = false;           // the body is gzip (Content-Encoding)

    // `status` with a line of plain text.
    static HttpReply Text(unsigned status, const std::string& text);
    // 200 with `text` of `type`, gzipped when the request accepts it.
    static HttpReply Content(const HttpRequest& request, std::string text, const char* type);
};

// What a request may cost the exporter.
struct HttpLimits {
    unsigned connections = 1024;    // open at once (fewer when fewer files may be open)
    unsigned deadlineSeconds = 10;  // to send a request whole, from connecting or from
                                    // the previous answer; and to take an answer
    size_t requestBytes = 16384;    // request line and headers; more get 414 or 431
};

class HttpServer {
public:
    // Answers what a request asks: called on a worker thread, it calls
    // `reply` once, then or later, from any thread (a scrape answers when
    // the reading it shares is done, so no thread waits for it). Throwing
    // instead gives a 500, or a 503 when not even that can be made.
    using Reply = std::function<void(HttpReply)>;
    using Site = std::function<void(const HttpRequest&, const Reply& reply)>;

    // Starts serving, with TLS and basic auth as `web` says; throws
    // ToolError when the address cannot be had or TLS cannot start with the
    // certificate and key.
    HttpServer(const ListenAddress& listen, const HttpLimits& limits, const WebConfig& web,
               Site site);
    // Stops: no new connections, the answers under way finished, every
    // connection closed and every thread ended.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    // Serves new connections with `web` from now on, on the same socket, so
    // that no client is refused meanwhile; connections already open finish
    // their answers with the configuration they began with. Throws ToolError
    // (the configuration in use kept) when TLS cannot start with `web`.
    void reload(const WebConfig& web);

    // The port actually bound (the one asked for, or the system's choice
    // for port 0).
    unsigned port() const;

private:
    std::unique_ptr<HttpCore> core_;
};

}  // namespace voractl
