#include "Http.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <strings.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <thread>

#include "ConnectionGuard.h"
#include "Gzip.h"
#include "Login.h"
#include "Request.h"
#include "ThrottledLog.h"
#include "ToolError.h"
#include "WorkQueue.h"

namespace voractl {

namespace {

// Nothing from elsewhere: the page's script, style and data come from here.
const char kPolicy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
const char kPlain[] = "text/plain; charset=utf-8";

// libmicrohttpd keeps a request's line and headers in a buffer of this
// size. It is twice the exporter's own limit, so that a request over that
// limit still arrives whole and gets the exporter's answer, with its
// headers; only a larger one gets libmicrohttpd's own.
size_t BufferBytes(const HttpLimits& limits) { return 2 * limits.requestBytes; }

// Threads that answer requests. A scrape that shares a reading holds none
// of them while it waits, so two serve any number of scrapers: one reads the
// board while the other answers the page. More only wake for nothing.
const unsigned kWorkers = 2;

// "127.0.0.1" or "::1".
std::string HostText(const sockaddr* address) {
    char host[INET6_ADDRSTRLEN] = "?";
    if (address != nullptr && address->sa_family == AF_INET) {
        inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(address)->sin_addr, host,
                  sizeof host);
    } else if (address != nullptr && address->sa_family == AF_INET6) {
        inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr, host,
                  sizeof host);
    }
    return host;
}

const char* Find(const std::vector<std::pair<std::string, std::string>>& values,
                 const std::string& name, bool anyCase) {
    for (const auto& [key, value] : values) {
        if (anyCase ? strcasecmp(key.c_str(), name.c_str()) == 0 : key == name) {
            return value.c_str();
        }
    }
    return nullptr;
}

// The listening socket, shared by every libmicrohttpd daemon the server
// runs (each gets its own descriptor of it).
int Listen(const ListenAddress& listen) {
    const int family = listen.address.ss_family;
    const int fd = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int on = 1;
    bool ok = fd >= 0 && setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0;
    if (ok && family == AF_INET6) {
        // ":PORT" serves IPv4 clients too; a named IPv6 address only itself.
        const auto* v6 = reinterpret_cast<const sockaddr_in6*>(&listen.address);
        int only = IN6_IS_ADDR_UNSPECIFIED(&v6->sin6_addr) ? 0 : 1;
        ok = setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &only, sizeof only) == 0;
    }
    ok = ok && bind(fd, reinterpret_cast<const sockaddr*>(&listen.address), listen.length) == 0 &&
         ::listen(fd, SOMAXCONN) == 0;
    if (!ok) {
        const int error = errno;
        if (fd >= 0) {
            close(fd);
        }
        throw ToolError("cannot listen on " + listen.text + ": " + std::strerror(error));
    }
    return fd;
}

}  // namespace

const char* HttpRequest::header(const std::string& name) const {
    return Find(headers, name, true);
}

const char* HttpRequest::argument(const std::string& name) const {
    return Find(arguments, name, false);
}

HttpReply HttpReply::Text(unsigned status, const std::string& text) {
    return HttpReply{status, std::make_shared<const std::string>(text), kPlain, false};
}

HttpReply HttpReply::Content(const HttpRequest& request, std::string text, std::string type) {
    if (AcceptsGzip(request.header("Accept-Encoding"))) {
        std::string packed = Gzip(text);
        if (!packed.empty()) {
            return HttpReply{200, std::make_shared<const std::string>(std::move(packed)),
                             std::move(type), true};
        }
    }
    return HttpReply{200, std::make_shared<const std::string>(std::move(text)), std::move(type),
                     false};
}

class HttpCore {
public:
    struct Exchange;
    struct Gate;

    const HttpLimits limits;
    const HttpServer::Site site;
    const int listener;
    ConnectionGuard guard;
    WorkQueue workers;
    ThrottledLog library{"messages of libmicrohttpd", std::chrono::seconds(10)};
    std::atomic<bool> starting{false};  // libmicrohttpd's messages then shown as they come

    std::unique_ptr<Gate> active;
    std::mutex mutex;  // guards what follows
    std::condition_variable changed;
    bool stopping = false;
    unsigned retiring = 0;  // replaced daemons not yet stopped

    HttpCore(const ListenAddress& listen, const HttpLimits& limits, HttpServer::Site site)
        : limits(limits),
          site(std::move(site)),
          listener(Listen(listen)),
          guard(std::chrono::seconds(limits.deadlineSeconds), limits.connections),
          workers(kWorkers, limits.connections) {}
    ~HttpCore() { ::close(listener); }

    std::unique_ptr<Gate> open(const WebConfig& web);
    void retire(std::unique_ptr<Gate> gate);
};

// One request between libmicrohttpd's calls.
struct HttpCore::Exchange {
    enum class Stage { Arrived, Checked, Answered };
    Stage stage = Stage::Arrived;
    bool allowed = false;  // what the password check found
    std::string user;
    HttpRequest request;
    HttpReply reply;
};

// One libmicrohttpd daemon with its web configuration. A reload starts
// another on the same socket and lets this one finish what it began.
struct HttpCore::Gate {
    HttpCore& core;
    const WebConfig web;
    Login login;
    MHD_Daemon* daemon = nullptr;
    int socket = -1;  // its descriptor of the listening socket, once replaced
    std::atomic<bool> draining{false};  // replaced: answers close their connections
    std::atomic<unsigned> open{0};      // connections

    std::mutex mutex;  // guards what follows
    std::condition_variable idle;
    bool closing = false;  // no more work is taken
    unsigned busy = 0;     // connections set aside while a thread works for them

    Gate(HttpCore& core, const WebConfig& web) : core(core), web(web), login(web.users) {}

    // Takes work for a connection; false once closing.
    bool take() {
        std::lock_guard<std::mutex> lock(mutex);
        busy += closing ? 0 : 1;
        return !closing;
    }
    void give() {
        std::lock_guard<std::mutex> lock(mutex);
        if (--busy == 0) {
            idle.notify_all();
        }
    }
    // Takes no more work and waits for the work under way: after this, no
    // connection is set aside and the daemon can stop.
    void close() {
        login.stop();
        std::unique_lock<std::mutex> lock(mutex);
        closing = true;
        idle.wait(lock, [this] { return busy == 0; });
    }

    MHD_Result inspect(MHD_Connection* connection, const char* url, const char* method);
    MHD_Result start(MHD_Connection* connection, const char* url, Exchange& exchange);
    MHD_Result resume(MHD_Connection* connection, const char* url, Exchange& exchange);
    MHD_Result answer(MHD_Connection* connection, Exchange& exchange);
    MHD_Result aside(MHD_Connection* connection, Exchange& exchange,
                     const std::function<bool(std::function<void()>)>& start);
    MHD_Result send(MHD_Connection* connection, const HttpReply& reply);
};


using Gate = HttpCore::Gate;
using Exchange = HttpCore::Exchange;

namespace {

MHD_Result Call(void* cls, MHD_Connection* connection, const char* url, const char* method,
                const char*, const char*, size_t* uploadSize, void** state) {
    Gate& gate = *static_cast<Gate*>(cls);
    Exchange* exchange = static_cast<Exchange*>(*state);
    if (exchange == nullptr) {
        *state = exchange = new Exchange;
        exchange->request.arrived = std::chrono::steady_clock::now();
        const MHD_ConnectionInfo* peer =
            MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
        if (peer != nullptr && peer->socket_context != nullptr) {
            gate.core.guard.arrived(static_cast<ConnectionGuard::Peer*>(peer->socket_context));
        }
        return gate.inspect(connection, url, method);
    }
    if (*uploadSize != 0) {
        // Never: a request with a body is answered before its body is read.
        *uploadSize = 0;
        return MHD_YES;
    }
    return gate.resume(connection, url, *exchange);
}

void Completed(void* cls, MHD_Connection* connection, void** state, MHD_RequestTerminationCode) {
    delete static_cast<Exchange*>(*state);
    *state = nullptr;
    const MHD_ConnectionInfo* peer =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
    if (peer != nullptr && peer->socket_context != nullptr) {
        static_cast<Gate*>(cls)->core.guard.answered(
            static_cast<ConnectionGuard::Peer*>(peer->socket_context));
    }
}

void Connected(void* cls, MHD_Connection* connection, void** socket,
               MHD_ConnectionNotificationCode code) {
    Gate& gate = *static_cast<Gate*>(cls);
    if (code == MHD_CONNECTION_NOTIFY_STARTED) {
        const MHD_ConnectionInfo* fd =
            MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
        const MHD_ConnectionInfo* from =
            MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
        if (fd != nullptr) {
            *socket = gate.core.guard.opened(fd->connect_fd,
                                             HostText(from != nullptr ? from->client_addr : nullptr));
        }
        ++gate.open;
    } else {
        if (*socket != nullptr) {
            gate.core.guard.closed(static_cast<ConnectionGuard::Peer*>(*socket));
            *socket = nullptr;
        }
        --gate.open;
    }
}

// libmicrohttpd's own messages, on standard error with their source: as
// they come while a daemon starts (why TLS cannot start), within the
// log's bound afterwards (a client can cause them at will).
void Log(void* cls, const char* format, va_list arguments) {
    auto& core = *static_cast<HttpCore*>(cls);
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    size_t length = std::strlen(text);
    while (length > 0 && text[length - 1] == '\n') {
        text[--length] = '\0';
    }
    if (core.starting) {
        std::fprintf(stderr, "libmicrohttpd: %s\n", text);
    } else {
        core.library.say(std::string("libmicrohttpd: ") + text);
    }
}

void Release(void* body) {
    delete static_cast<std::shared_ptr<const std::string>*>(body);
}

// What the request asks, for a worker thread (its arrival already noted).
void Capture(MHD_Connection* connection, const char* url, HttpRequest& request) {
    request.path = url;
    const auto add = [](void* values, MHD_ValueKind, const char* key, const char* value) {
        static_cast<std::vector<std::pair<std::string, std::string>>*>(values)->emplace_back(
            key != nullptr ? key : "", value != nullptr ? value : "");
        return MHD_YES;
    };
    MHD_get_connection_values(connection, MHD_HEADER_KIND, add, &request.headers);
    MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, add, &request.arguments);
}

// The request line's length, near enough: its path and query.
size_t LineLength(MHD_Connection* connection, const char* url) {
    size_t length = std::strlen(url);
    const auto add = [](void* total, MHD_ValueKind, const char* key, const char* value) {
        *static_cast<size_t*>(total) +=
            2 + (key != nullptr ? std::strlen(key) : 0) + (value != nullptr ? std::strlen(value) : 0);
        return MHD_YES;
    };
    MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, add, &length);
    return length;
}

// A body announced, by its length or by chunks.
bool HasBody(MHD_Connection* connection) {
    const char* length =
        MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_CONTENT_LENGTH);
    return (length != nullptr && std::strspn(length, "0") != std::strlen(length)) ||
           MHD_lookup_connection_value(connection, MHD_HEADER_KIND,
                                       MHD_HTTP_HEADER_TRANSFER_ENCODING) != nullptr;
}

std::string ClientOf(MHD_Connection* connection) {
    const MHD_ConnectionInfo* from =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
    return HostText(from != nullptr ? from->client_addr : nullptr);
}

}  // namespace

// On the first call, with the headers: what is refused outright is answered
// now, before any body is read (so a client that trickles one holds
// nothing), and the connection closed after it. The rest is answered on
// the next call: an answer queued on the first keeps no connection alive.
MHD_Result Gate::inspect(MHD_Connection* connection, const char* url, const char* method) {
    const MHD_ConnectionInfo* head =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_REQUEST_HEADER_SIZE);
    if (head != nullptr && head->header_size > core.limits.requestBytes) {
        return LineLength(connection, url) > core.limits.requestBytes
                   ? send(connection, HttpReply::Text(MHD_HTTP_URI_TOO_LONG,
                                                      "The request's URL is too long.\n"))
                   : send(connection,
                          HttpReply::Text(MHD_HTTP_REQUEST_HEADER_FIELDS_TOO_LARGE,
                                          "The request's headers are too large.\n"));
    }
    if (std::strcmp(method, MHD_HTTP_METHOD_GET) != 0 &&
        std::strcmp(method, MHD_HTTP_METHOD_HEAD) != 0) {
        return send(connection, HttpReply::Text(MHD_HTTP_METHOD_NOT_ALLOWED,
                                                "Only GET and HEAD: the exporter changes nothing.\n"));
    }
    if (HasBody(connection)) {
        return send(connection,
                    HttpReply::Text(MHD_HTTP_BAD_REQUEST, "A GET request takes no body.\n"));
    }
    return MHD_YES;
}

MHD_Result Gate::start(MHD_Connection* connection, const char* url, Exchange& exchange) {
    if (!login.required()) {
        Capture(connection, url, exchange.request);
        return answer(connection, exchange);
    }
    char* password = nullptr;
    char* user = MHD_basic_auth_get_username_password(connection, &password);
    const bool given = user != nullptr && password != nullptr;
    exchange.user = user != nullptr ? user : "";
    const std::string secret = password != nullptr ? password : "";
    MHD_free(user);
    MHD_free(password);
    if (!given) {
        return send(connection, HttpReply::Text(MHD_HTTP_UNAUTHORIZED,
                                                "Unauthorised: give a user and password of the web "
                                                "configuration.\n"));
    }
    Capture(connection, url, exchange.request);
    switch (login.known(exchange.user, secret)) {
        case Login::Verdict::Allowed:
            return answer(connection, exchange);
        case Login::Verdict::Refused:
            exchange.stage = Exchange::Stage::Checked;
            return resume(connection, url, exchange);
        case Login::Verdict::Unchecked:
            break;
    }
    return aside(connection, exchange, [this, &exchange, secret](std::function<void()> back) {
        return login.check(exchange.user, secret, [&exchange, back](bool allowed) {
            exchange.allowed = allowed;
            exchange.stage = Exchange::Stage::Checked;
            back();
        });
    });
}

MHD_Result Gate::resume(MHD_Connection* connection, const char* url, Exchange& exchange) {
    switch (exchange.stage) {
        case Exchange::Stage::Checked:
            if (exchange.allowed) {
                return answer(connection, exchange);
            }
            if (login.stopping()) {
                return send(connection, HttpReply::Text(MHD_HTTP_SERVICE_UNAVAILABLE,
                                                        "The exporter is stopping.\n"));
            }
            login.refused(exchange.user, ClientOf(connection));
            return send(connection, HttpReply::Text(MHD_HTTP_UNAUTHORIZED,
                                                    "Unauthorised: give a user and password of "
                                                    "the web configuration.\n"));
        case Exchange::Stage::Answered:
            return send(connection, exchange.reply);
        case Exchange::Stage::Arrived:
            return start(connection, url, exchange);
    }
    return MHD_YES;
}

MHD_Result Gate::answer(MHD_Connection* connection, Exchange& exchange) {
    return aside(connection, exchange, [this, &exchange](std::function<void()> back) {
        return core.workers.post([this, &exchange, back] {
            // The first answer counts: a site that throws after answering
            // has answered.
            auto answered = std::make_shared<std::atomic<bool>>(false);
            const HttpServer::Reply reply = [&exchange, back, answered](HttpReply got) {
                if (!answered->exchange(true)) {
                    exchange.reply = std::move(got);
                    exchange.stage = Exchange::Stage::Answered;
                    back();
                }
            };
            try {
                core.site(exchange.request, reply);
            } catch (const std::exception& e) {
                reply(HttpReply::Text(MHD_HTTP_INTERNAL_SERVER_ERROR,
                                      std::string("The board could not be read: ") + e.what() +
                                          "\n"));
            }
        });
    });
}

// Sets the connection aside while `start` has work done for it on another
// thread, handing that work `back`, to be called once when it is done: the
// connection comes back and libmicrohttpd calls again. `start` answers
// false when the work could not be queued.
MHD_Result Gate::aside(MHD_Connection* connection, Exchange& exchange,
                       const std::function<bool(std::function<void()>)>& start) {
    if (!take()) {
        return send(connection, HttpReply::Text(MHD_HTTP_SERVICE_UNAVAILABLE,
                                                "The exporter is stopping.\n"));
    }
    MHD_suspend_connection(connection);
    const auto back = [this, connection] {
        MHD_resume_connection(connection);
        give();
    };
    if (!start(back)) {
        exchange.reply = HttpReply::Text(MHD_HTTP_SERVICE_UNAVAILABLE,
                                         "Too many requests at once: try again.\n");
        exchange.stage = Exchange::Stage::Answered;
        back();
    }
    return MHD_YES;
}

MHD_Result Gate::send(MHD_Connection* connection, const HttpReply& reply) {
    static const std::string kNothing;
    const std::string& body = reply.body != nullptr ? *reply.body : kNothing;
    auto* held = new std::shared_ptr<const std::string>(reply.body);
    MHD_Response* response = MHD_create_response_from_buffer_with_free_callback_cls(
        body.size(), const_cast<char*>(body.data()), &Release, held);
    if (response == nullptr) {
        delete held;
        return MHD_NO;
    }
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE,
                            reply.type.empty() ? kPlain : reply.type.c_str());
    MHD_add_response_header(response, "X-Content-Type-Options", "nosniff");
    MHD_add_response_header(response, "Content-Security-Policy", kPolicy);
    MHD_add_response_header(response, "Referrer-Policy", "no-referrer");
    MHD_add_response_header(response, "Cache-Control", "no-store");
    if (reply.gzip) {
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_ENCODING, "gzip");
    }
    if (reply.status == MHD_HTTP_METHOD_NOT_ALLOWED) {
        MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
    }
    if (draining) {
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONNECTION, "close");
    }
    const MHD_Result queued =
        reply.status == MHD_HTTP_UNAUTHORIZED
            ? MHD_queue_basic_auth_fail_response(connection, "voradrv", response)
            : MHD_queue_response(connection, reply.status, response);
    MHD_destroy_response(response);
    return queued;
}


std::unique_ptr<Gate> HttpCore::open(const WebConfig& web) {
    auto gate = std::make_unique<Gate>(*this, web);
    unsigned flags = MHD_USE_EPOLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME | MHD_USE_ERROR_LOG | MHD_USE_TURBO;
    std::vector<MHD_OptionItem> tls;
    if (web.tls()) {
        if (MHD_is_feature_supported(MHD_FEATURE_TLS) != MHD_YES) {
            throw ToolError("this libmicrohttpd was built without TLS");
        }
        flags |= MHD_USE_TLS;
        tls.push_back({MHD_OPTION_HTTPS_MEM_CERT, 0, const_cast<char*>(gate->web.certificate.c_str())});
        tls.push_back({MHD_OPTION_HTTPS_MEM_KEY, 0, const_cast<char*>(gate->web.key.c_str())});
        tls.push_back({MHD_OPTION_HTTPS_PRIORITIES, 0, const_cast<char*>(gate->web.priorities.c_str())});
    }
    tls.push_back({MHD_OPTION_END, 0, nullptr});
    starting = true;
    struct Started {
        std::atomic<bool>& flag;
        ~Started() { flag = false; }
    } started{starting};
    if (web.tls()) {
        // A daemon without a socket tries the certificate, key and
        // priorities first: one that fails closes the socket it was given.
        MHD_Daemon* trial = MHD_start_daemon(
            MHD_USE_TLS | MHD_USE_NO_LISTEN_SOCKET | MHD_USE_ERROR_LOG, 0, nullptr, nullptr, &Call,
            gate.get(), MHD_OPTION_EXTERNAL_LOGGER, &Log, this, MHD_OPTION_ARRAY, tls.data(),
            MHD_OPTION_END);
        if (trial == nullptr) {
            throw ToolError("cannot serve TLS with this certificate and key (is the key the "
                            "certificate's?)");
        }
        MHD_stop_daemon(trial);
    }
    const int socket = fcntl(listener, F_DUPFD_CLOEXEC, 0);
    if (socket < 0) {
        throw ToolError(std::string("cannot serve: ") + std::strerror(errno));
    }
    gate->daemon = MHD_start_daemon(
        flags, 0, nullptr, nullptr, &Call, gate.get(), MHD_OPTION_EXTERNAL_LOGGER, &Log, this,
        MHD_OPTION_LISTEN_SOCKET, socket, MHD_OPTION_CONNECTION_LIMIT, limits.connections,
        MHD_OPTION_CONNECTION_TIMEOUT, limits.deadlineSeconds, MHD_OPTION_CONNECTION_MEMORY_LIMIT,
        BufferBytes(limits), MHD_OPTION_NOTIFY_COMPLETED, &Completed, gate.get(),
        MHD_OPTION_NOTIFY_CONNECTION, &Connected, gate.get(), MHD_OPTION_ARRAY, tls.data(),
        MHD_OPTION_END);
    if (gate->daemon == nullptr) {
        // libmicrohttpd closed the descriptor it was given.
        throw ToolError("cannot serve: libmicrohttpd did not start (see its message above)");
    }
    return gate;
}

// Stops a replaced daemon once its connections are done with (its answers
// close them; idle ones meet the guard's deadline), or when the server
// stops.
void HttpCore::retire(std::unique_ptr<Gate> gate) {
    std::lock_guard<std::mutex> lock(mutex);
    ++retiring;
    std::thread([this, gate = gate.release()] {
        {
            std::unique_lock<std::mutex> lock(mutex);
            const auto until = std::chrono::steady_clock::now() +
                               std::chrono::seconds(2 * limits.deadlineSeconds);
            while (!stopping && gate->open != 0 && std::chrono::steady_clock::now() < until) {
                changed.wait_for(lock, std::chrono::milliseconds(100));
            }
        }
        gate->close();
        MHD_stop_daemon(gate->daemon);
        ::close(gate->socket);
        delete gate;
        std::lock_guard<std::mutex> lock(mutex);
        --retiring;
        changed.notify_all();
    }).detach();
}

HttpServer::HttpServer(const ListenAddress& listen, const HttpLimits& limits, const WebConfig& web,
                       Site site)
    : core_(std::make_unique<HttpCore>(listen, limits, std::move(site))) {
    core_->active = core_->open(web);
}

HttpServer::~HttpServer() {
    {
        std::lock_guard<std::mutex> lock(core_->mutex);
        core_->stopping = true;
    }
    core_->changed.notify_all();
    // No new connections; the answers under way finished, then every
    // connection closed.
    Gate& gate = *core_->active;
    gate.socket = MHD_quiesce_daemon(gate.daemon);
    gate.close();
    {
        std::unique_lock<std::mutex> lock(core_->mutex);
        core_->changed.wait(lock, [this] { return core_->retiring == 0; });
    }
    MHD_stop_daemon(gate.daemon);
    ::close(gate.socket);
}

void HttpServer::reload(const WebConfig& web) {
    std::unique_ptr<Gate> fresh = core_->open(web);
    std::unique_ptr<Gate> old = std::move(core_->active);
    core_->active = std::move(fresh);
    // The old daemon accepts no more connections; it keeps the socket's
    // descriptor it was given until it stops.
    old->socket = MHD_quiesce_daemon(old->daemon);
    old->draining = true;
    core_->retire(std::move(old));
}

unsigned HttpServer::port() const {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (getsockname(core_->listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        return 0;
    }
    return ntohs(address.ss_family == AF_INET6
                     ? reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port
                     : reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

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

}  // namespace voractl
