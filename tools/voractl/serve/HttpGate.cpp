// A request's way through a daemon: checked on arrival, let in by basic
// auth, set aside while a worker asks the site, and answered with the
// protective headers every answer carries.
#include <arpa/inet.h>
#include <netinet/in.h>

#include <cstdio>
#include <cstring>

#include "HttpCore.h"
#include "ToolError.h"

namespace voractl {

using Gate = HttpCore::Gate;
using Exchange = HttpCore::Exchange;

namespace {

// Nothing from elsewhere: the page's script, style and data come from here.
const char kPolicy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
const char kPlain[] = "text/plain; charset=utf-8";
const char kUnauthorised[] = "Unauthorised: give a user and password of the web configuration.\n";

// The core's answer made beforehand: its body aliases the text and owns
// nothing, so giving it allocates nothing.
HttpReply CannotAnswer(const HttpCore& core) {
    return HttpReply{503, std::shared_ptr<const std::string>(std::shared_ptr<const std::string>(),
                                                            &core.cannotAnswer),
                     nullptr, false};
}

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

std::string ClientOf(MHD_Connection* connection) {
    const MHD_ConnectionInfo* from =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
    return HostText(from != nullptr ? from->client_addr : nullptr);
}

// The guard's record of the connection, or null.
ConnectionGuard::Peer* PeerOf(MHD_Connection* connection) {
    const MHD_ConnectionInfo* peer =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
    return peer != nullptr ? static_cast<ConnectionGuard::Peer*>(peer->socket_context) : nullptr;
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

}  // namespace

MHD_Result GateCall(void* cls, MHD_Connection* connection, const char* url, const char* method,
                    const char*, const char*, size_t* uploadSize, void** state) {
    Gate& gate = *static_cast<Gate*>(cls);
    try {
        auto* exchange = static_cast<Exchange*>(*state);
        if (exchange == nullptr) {
            *state = exchange = new Exchange;
            exchange->request.arrived = std::chrono::steady_clock::now();
            if (ConnectionGuard::Peer* peer = PeerOf(connection)) {
                gate.core.guard.arrived(peer);
            }
            return gate.inspect(connection, url, method);
        }
        if (*uploadSize != 0) {
            // Never: a request with a body is answered before its body is read.
            *uploadSize = 0;
            return MHD_YES;
        }
        return gate.resume(connection, url, *exchange);
    } catch (...) {
        return MHD_NO;  // closes the connection; its exchange goes with it
    }
}

void GateCompleted(void* cls, MHD_Connection* connection, void** state,
                   MHD_RequestTerminationCode) {
    delete static_cast<Exchange*>(*state);
    *state = nullptr;
    if (ConnectionGuard::Peer* peer = PeerOf(connection)) {
        static_cast<Gate*>(cls)->core.guard.answered(peer);
    }
}

void GateConnected(void* cls, MHD_Connection* connection, void** socket,
                   MHD_ConnectionNotificationCode code) {
    Gate& gate = *static_cast<Gate*>(cls);
    if (code != MHD_CONNECTION_NOTIFY_STARTED) {
        if (*socket != nullptr) {
            gate.core.guard.closed(static_cast<ConnectionGuard::Peer*>(*socket));
            *socket = nullptr;
        }
        --gate.open;
        return;
    }
    ++gate.open;
    const MHD_ConnectionInfo* fd =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
    try {
        if (fd != nullptr) {
            *socket = gate.core.guard.opened(fd->connect_fd, ClientOf(connection));
        }
    } catch (...) {
        // Out of memory: this connection goes unguarded.
    }
}

// libmicrohttpd's own messages, on standard error with their source: as
// they come while a daemon starts (why TLS cannot start), within the
// log's bound afterwards (a client can cause them at will).
void LibraryLog(void* cls, const char* format, va_list arguments) {
    auto& core = *static_cast<HttpCore*>(cls);
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    size_t length = std::strlen(text);
    while (length > 0 && text[length - 1] == '\n') {
        text[--length] = '\0';
    }
    if (core.starting) {
        std::fprintf(stderr, "libmicrohttpd: %s\n", text);
        return;
    }
    try {
        core.library.say(std::string("libmicrohttpd: ") + text);
    } catch (...) {
        // A message that cannot be made (memory ran out) is dropped.
    }
}

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
    const std::unique_ptr<char, void (*)(void*)> user(
        MHD_basic_auth_get_username_password(connection, &password), &MHD_free);
    const std::unique_ptr<char, void (*)(void*)> held(password, &MHD_free);
    if (user == nullptr || password == nullptr) {
        return send(connection, HttpReply::Text(MHD_HTTP_UNAUTHORIZED, kUnauthorised));
    }
    exchange.user = user.get();
    const std::string secret = password;
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
            return send(connection, HttpReply::Text(MHD_HTTP_UNAUTHORIZED, kUnauthorised));
        case Exchange::Stage::Answered:
            return send(connection, exchange.reply);
        case Exchange::Stage::Arrived:
            return start(connection, url, exchange);
    }
    return MHD_YES;
}

MHD_Result Gate::answer(MHD_Connection* connection, Exchange& exchange) {
    return aside(connection, exchange, [this, &exchange](std::function<void()> back) {
        return core.workers.post([this, &exchange, back] { work(exchange, back); });
    });
}

// Asks the site for the answer. Whatever happens, the connection is given
// back once, with an answer: the site's first (a site that throws after
// answering has answered), else a 500, else one made beforehand.
void Gate::work(Exchange& exchange, const std::function<void()>& back) noexcept {
    std::shared_ptr<std::atomic<bool>> answered;
    try {
        answered = std::make_shared<std::atomic<bool>>(false);
        const HttpServer::Reply reply = [&exchange, back, answered](HttpReply got) {
            if (!answered->exchange(true)) {
                exchange.reply = std::move(got);
                exchange.stage = Exchange::Stage::Answered;
                back();
            }
        };
        try {
            core.site(exchange.request, reply);
        } catch (...) {
            const Exit failure = ExitFor(std::current_exception());
            reply(HttpReply::Text(MHD_HTTP_INTERNAL_SERVER_ERROR,
                                  std::string("The request could not be answered: ") +
                                      failure.reason + failure.detail + "\n"));
        }
    } catch (...) {
        if (answered == nullptr || !answered->exchange(true)) {
            exchange.reply = CannotAnswer(core);
            exchange.stage = Exchange::Stage::Answered;
            back();
        }
    }
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
    bool started = false;
    try {
        started = start(back);
        if (!started) {
            exchange.reply = HttpReply::Text(MHD_HTTP_SERVICE_UNAVAILABLE,
                                             "Too many requests at once: try again.\n");
        }
    } catch (...) {
        exchange.reply = CannotAnswer(core);
    }
    if (!started) {
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
                            reply.type != nullptr ? reply.type : kPlain);
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

}  // namespace voractl
