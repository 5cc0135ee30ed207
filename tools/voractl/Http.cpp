#include "Http.h"

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <zlib.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <vector>

#include "Format.h"
#include "Exporter.h"
#include "PageAssets.h"
#include "Request.h"

namespace voractl {

namespace {

// Nothing from elsewhere: the page's script, style and data come from here.
const char kPolicy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
const char kJson[] = "application/json";

const char kUnauthorised[] = "Unauthorised: give a user and password of the web configuration.\n";
const char kTextFormat[] = "text/plain; version=0.0.4; charset=utf-8";
const char kOpenMetricsFormat[] = "application/openmetrics-text; version=1.0.0; charset=utf-8";

// The gzip stream of `text`; empty when zlib fails (then sent plain).
std::string Gzip(const std::string& text) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
        return "";
    }
    std::string out(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    const int result = deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return result == Z_STREAM_END ? out : "";
}

// The headers every answer carries: its type is what it says, nothing from
// elsewhere runs in it, and nothing keeps it.
void Protect(MHD_Response* response) {
    MHD_add_response_header(response, "X-Content-Type-Options", "nosniff");
    MHD_add_response_header(response, "Content-Security-Policy", kPolicy);
    MHD_add_response_header(response, "Referrer-Policy", "no-referrer");
    MHD_add_response_header(response, "Cache-Control", "no-store");
}

MHD_Result Answer(MHD_Connection* connection, unsigned status, const std::string& body,
                  const char* type, const char* encoding = nullptr,
                  const char* allow = nullptr) {
    MHD_Response* response = MHD_create_response_from_buffer(
        body.size(), const_cast<char*>(body.data()), MHD_RESPMEM_MUST_COPY);
    if (response == nullptr) {
        return MHD_NO;
    }
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, type);
    Protect(response);
    if (encoding != nullptr) {
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_ENCODING, encoding);
    }
    if (allow != nullptr) {
        MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, allow);
    }
    const MHD_Result queued = MHD_queue_response(connection, status, response);
    MHD_destroy_response(response);
    return queued;
}

}  // namespace

struct HttpServer::Handler {
    Site site;
    WebConfig web;

    // A request's state between libmicrohttpd's calls: whether it came
    // with a body.
    struct Request {
        bool body = false;
    };

    static MHD_Result Call(void* self, MHD_Connection* connection, const char* url,
                           const char* method, const char*, const char*, size_t* uploadSize,
                           void** state) {
        if (*state == nullptr) {
            *state = new Request;
            return MHD_YES;
        }
        Request* request = static_cast<Request*>(*state);
        if (*uploadSize != 0) {
            request->body = true;  // read and dropped: nothing here takes a body
            *uploadSize = 0;
            return MHD_YES;
        }
        Handler* handler = static_cast<Handler*>(self);
        if (!handler->web.users.empty() && !handler->authorised(connection)) {
            MHD_Response* response = MHD_create_response_from_buffer(
                sizeof kUnauthorised - 1, const_cast<char*>(kUnauthorised), MHD_RESPMEM_PERSISTENT);
            if (response == nullptr) {
                return MHD_NO;
            }
            MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, "text/plain; charset=utf-8");
            Protect(response);
            const MHD_Result queued = MHD_queue_basic_auth_fail_response(connection, "voradrv", response);
            MHD_destroy_response(response);
            return queued;
        }
        return handler->answer(connection, url, method, request->body);
    }

    bool authorised(MHD_Connection* connection) const {
        char* password = nullptr;
        char* user = MHD_basic_auth_get_username_password(connection, &password);
        const bool allowed = user != nullptr && password != nullptr && web.allows(user, password);
        MHD_free(user);
        MHD_free(password);
        return allowed;
    }

    // libmicrohttpd's own messages, on standard error with their source.
    static void Log(void*, const char* format, va_list arguments) {
        char text[512];
        std::vsnprintf(text, sizeof text, format, arguments);
        const size_t length = std::strlen(text);
        std::fprintf(stderr, "libmicrohttpd: %s%s", text,
                     length > 0 && text[length - 1] == '\n' ? "" : "\n");
    }

    static void Done(void*, MHD_Connection*, void** state, MHD_RequestTerminationCode) {
        delete static_cast<Request*>(*state);
        *state = nullptr;
    }

    MHD_Result answer(MHD_Connection* connection, const std::string& url, const std::string& method,
                      bool body) {
        if (method != MHD_HTTP_METHOD_GET && method != MHD_HTTP_METHOD_HEAD) {
            return Answer(connection, MHD_HTTP_METHOD_NOT_ALLOWED,
                          "Only GET and HEAD: the exporter changes nothing.\n",
                          "text/plain; charset=utf-8", nullptr, "GET, HEAD");
        }
        if (body) {
            return Answer(connection, MHD_HTTP_BAD_REQUEST, "A GET request takes no body.\n",
                          "text/plain; charset=utf-8");
        }
        if (const PageAsset* asset = FindPageAsset(url)) {
            return Compressed(connection, asset->text, asset->type);
        }
        try {
            if (url == "/api/v1/document") {
                return Compressed(connection, site.document(), kJson);
            }
            if (url == "/api/v1/library") {
                return Compressed(connection, site.library(), kJson);
            }
            if (url == "/api/v1/items") {
                return Compressed(connection, site.items(), kJson);
            }
            if (url == "/api/v1/samples") {
                const std::optional<uint64_t> since = SinceArgument(
                    MHD_lookup_connection_value(connection, MHD_GET_ARGUMENT_KIND, "since"));
                if (!since) {
                    return Answer(connection, MHD_HTTP_BAD_REQUEST,
                                  "since: give the sequence number of the last sample seen.\n",
                                  "text/plain; charset=utf-8");
                }
                return Compressed(connection, site.samples(*since), kJson);
            }
            if (url != "/metrics") {
                return Answer(connection, MHD_HTTP_NOT_FOUND, "Not found: see / and /metrics.\n",
                              "text/plain; charset=utf-8");
            }
            const std::shared_ptr<const std::string> metrics = site.metrics();
            const bool open = PreferredFormat(MHD_lookup_connection_value(
                                  connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_ACCEPT)) ==
                              MetricsFormat::OpenMetrics;
            return Compressed(connection, open ? OpenMetricsText(*metrics) : *metrics,
                              open ? kOpenMetricsFormat : kTextFormat);
        } catch (const std::exception& e) {
            return Answer(connection, MHD_HTTP_INTERNAL_SERVER_ERROR,
                          std::string("The board could not be read: ") + e.what() + "\n",
                          "text/plain; charset=utf-8");
        }
    }

    // 200 with `text`, gzipped when the client accepts it.
    static MHD_Result Compressed(MHD_Connection* connection, const std::string& text,
                                 const char* type) {
        if (AcceptsGzip(MHD_lookup_connection_value(connection, MHD_HEADER_KIND,
                                                    MHD_HTTP_HEADER_ACCEPT_ENCODING))) {
            const std::string packed = Gzip(text);
            if (!packed.empty()) {
                return Answer(connection, MHD_HTTP_OK, packed, type, "gzip");
            }
        }
        return Answer(connection, MHD_HTTP_OK, text, type);
    }
};

ListenAddress ParseListenAddress(const std::string& text) {
    ListenAddress listen;
    listen.text = text;
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos) {
        throw ToolError("--listen needs ADDRESS:PORT, not \"" + text + "\"", true);
    }
    std::string host = text.substr(0, colon);
    const std::string portText = text.substr(colon + 1);
    char* end = nullptr;
    const unsigned long port = std::strtoul(portText.c_str(), &end, 10);
    if (portText.empty() || *end != '\0' || port > 65535 || portText[0] == '-') {
        throw ToolError("--listen: the port must be a number from 0 to 65535, not \"" + portText +
                            "\"",
                        true);
    }
    const bool bracketed = host.size() >= 2 && host.front() == '[' && host.back() == ']';
    if (bracketed) {
        host = host.substr(1, host.size() - 2);
    }
    if (host == "localhost") {
        host = "127.0.0.1";
    }
    sockaddr_in v4{};
    sockaddr_in6 v6{};
    if (host.empty()) {
        v6.sin6_family = AF_INET6;
        v6.sin6_addr = in6addr_any;
    } else if (!bracketed && inet_pton(AF_INET, host.c_str(), &v4.sin_addr) == 1) {
        v4.sin_family = AF_INET;
    } else if (inet_pton(AF_INET6, host.c_str(), &v6.sin6_addr) == 1 &&
               (bracketed || host.find(':') != std::string::npos)) {
        v6.sin6_family = AF_INET6;
    } else {
        throw ToolError("--listen: \"" + host +
                            "\" is not an IPv4 address, a bracketed IPv6 address or localhost",
                        true);
    }
    if (v4.sin_family == AF_INET) {
        v4.sin_port = htons(static_cast<uint16_t>(port));
        std::memcpy(&listen.address, &v4, sizeof v4);
        listen.length = sizeof v4;
    } else {
        v6.sin6_port = htons(static_cast<uint16_t>(port));
        std::memcpy(&listen.address, &v6, sizeof v6);
        listen.length = sizeof v6;
    }
    return listen;
}

HttpServer::HttpServer(const ListenAddress& listen, const HttpLimits& limits,
                       const WebConfig& web, Site site)
    : handler_(new Handler{std::move(site), web}) {
    unsigned flags = MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_THREAD_PER_CONNECTION |
                     MHD_USE_ERROR_LOG;
    if (listen.address.ss_family == AF_INET6) {
        // ":PORT" serves IPv4 clients too.
        const auto* v6 = reinterpret_cast<const sockaddr_in6*>(&listen.address);
        flags |= IN6_IS_ADDR_UNSPECIFIED(&v6->sin6_addr) ? MHD_USE_DUAL_STACK : MHD_USE_IPv6;
    }
    const auto* address = reinterpret_cast<const sockaddr*>(&listen.address);
    const uint16_t port = ntohs(listen.address.ss_family == AF_INET6
                                    ? reinterpret_cast<const sockaddr_in6*>(address)->sin6_port
                                    : reinterpret_cast<const sockaddr_in*>(address)->sin_port);
    std::vector<MHD_OptionItem> tls;
    if (handler_->web.tls()) {
        if (MHD_is_feature_supported(MHD_FEATURE_TLS) != MHD_YES) {
            throw ToolError("this libmicrohttpd was built without TLS");
        }
        flags |= MHD_USE_TLS;
        tls.push_back({MHD_OPTION_HTTPS_MEM_CERT, 0, const_cast<char*>(handler_->web.certificate.c_str())});
        tls.push_back({MHD_OPTION_HTTPS_MEM_KEY, 0, const_cast<char*>(handler_->web.key.c_str())});
        if (!handler_->web.priorities.empty()) {
            tls.push_back({MHD_OPTION_HTTPS_PRIORITIES, 0,
                           const_cast<char*>(handler_->web.priorities.c_str())});
        }
    }
    tls.push_back({MHD_OPTION_END, 0, nullptr});
    errno = 0;
    daemon_ = MHD_start_daemon(
        flags, port, nullptr, nullptr, &Handler::Call, handler_.get(), MHD_OPTION_EXTERNAL_LOGGER,
        &Handler::Log, nullptr, MHD_OPTION_SOCK_ADDR, address, MHD_OPTION_CONNECTION_LIMIT, limits.connections, MHD_OPTION_CONNECTION_TIMEOUT,
        limits.timeoutSeconds, MHD_OPTION_CONNECTION_MEMORY_LIMIT, limits.requestBytes,
        MHD_OPTION_NOTIFY_COMPLETED, &Handler::Done, nullptr, MHD_OPTION_ARRAY, tls.data(),
        MHD_OPTION_END);
    if (daemon_ == nullptr) {
        const int error = errno;
        throw ToolError("cannot listen on " + listen.text +
                        (handler_->web.tls() ? " with TLS (is the key the certificate's?)" : "") +
                        (error != 0 ? std::string(": ") + std::strerror(error) : ""));
    }
}

HttpServer::~HttpServer() {
    if (daemon_ != nullptr) {
        MHD_stop_daemon(daemon_);
    }
}

unsigned HttpServer::port() const {
    const MHD_DaemonInfo* info = MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_BIND_PORT);
    return info != nullptr ? info->port : 0;
}

}  // namespace voractl
