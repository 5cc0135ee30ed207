#include "Http.h"

#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

#include "Gzip.h"
#include "HttpCore.h"
#include "Request.h"
#include "ToolError.h"

namespace voractl {

namespace {

// libmicrohttpd keeps a request's line and headers in a buffer of this
// size. It is twice the exporter's own limit, so that a request over that
// limit still arrives whole and gets the exporter's answer, with its
// headers; only a larger one gets libmicrohttpd's own.
size_t BufferBytes(const HttpLimits& limits) { return 2 * limits.requestBytes; }

// Threads that answer requests. A scrape that shares a reading holds none
// of them while it waits, so two serve any number of scrapers: one reads the
// board while the other answers the page. More only wake for nothing.
const unsigned kWorkers = 2;

const char* Find(const std::vector<std::pair<std::string, std::string>>& values,
                 const std::string& name, bool anyCase) {
    for (const auto& [key, value] : values) {
        if (anyCase ? strcasecmp(key.c_str(), name.c_str()) == 0 : key == name) {
            return value.c_str();
        }
    }
    return nullptr;
}

// The daemon's TLS options, ending in MHD_OPTION_END; they point into `web`.
std::vector<MHD_OptionItem> TlsOptions(const WebConfig& web) {
    std::vector<MHD_OptionItem> tls;
    if (web.tls()) {
        if (MHD_is_feature_supported(MHD_FEATURE_TLS) != MHD_YES) {
            throw ToolError("this libmicrohttpd was built without TLS");
        }
        tls.push_back({MHD_OPTION_HTTPS_MEM_CERT, 0, const_cast<char*>(web.certificate.c_str())});
        tls.push_back({MHD_OPTION_HTTPS_MEM_KEY, 0, const_cast<char*>(web.key.c_str())});
        tls.push_back({MHD_OPTION_HTTPS_PRIORITIES, 0, const_cast<char*>(web.priorities.c_str())});
    }
    tls.push_back({MHD_OPTION_END, 0, nullptr});
    return tls;
}

// A daemon without a socket tries the certificate, key and priorities
// first: a daemon that fails to start with them closes the socket it was
// given.
void TryTls(HttpCore& core, HttpCore::Gate& gate, MHD_OptionItem* tls) {
    MHD_Daemon* trial = MHD_start_daemon(
        MHD_USE_TLS | MHD_USE_NO_LISTEN_SOCKET | MHD_USE_ERROR_LOG, 0, nullptr, nullptr, &GateCall,
        &gate, MHD_OPTION_EXTERNAL_LOGGER, &LibraryLog, &core, MHD_OPTION_ARRAY, tls,
        MHD_OPTION_END);
    if (trial == nullptr) {
        throw ToolError("cannot serve TLS with this certificate and key (is the key the "
                        "certificate's?)");
    }
    MHD_stop_daemon(trial);
}

}  // namespace

const char* HttpRequest::header(const std::string& name) const {
    return Find(headers, name, true);
}

const char* HttpRequest::argument(const std::string& name) const {
    return Find(arguments, name, false);
}

HttpReply HttpReply::Text(unsigned status, const std::string& text) {
    return HttpReply{status, std::make_shared<const std::string>(text), nullptr, false};
}

HttpReply HttpReply::Content(const HttpRequest& request, std::string text, const char* type) {
    if (AcceptsGzip(request.header("Accept-Encoding"))) {
        std::string packed = Gzip(text);
        if (!packed.empty()) {
            return HttpReply{200, std::make_shared<const std::string>(std::move(packed)), type,
                             true};
        }
    }
    return HttpReply{200, std::make_shared<const std::string>(std::move(text)), type, false};
}

HttpCore::HttpCore(const ListenAddress& listen, const HttpLimits& limits, HttpServer::Site site)
    : limits(limits),
      site(std::move(site)),
      listener(Listen(listen)),
      guard(std::chrono::seconds(limits.deadlineSeconds), limits.connections),
      workers(kWorkers, limits.connections) {}

HttpCore::~HttpCore() { ::close(listener); }

std::unique_ptr<HttpCore::Gate> HttpCore::open(const WebConfig& web) {
    auto gate = std::make_unique<Gate>(*this, web);
    std::vector<MHD_OptionItem> tls = TlsOptions(gate->web);
    starting = true;
    struct Started {
        std::atomic<bool>& flag;
        ~Started() { flag = false; }
    } started{starting};
    if (web.tls()) {
        TryTls(*this, *gate, tls.data());
    }
    const int socket = fcntl(listener, F_DUPFD_CLOEXEC, 0);
    if (socket < 0) {
        throw ToolError(std::string("cannot serve: ") + std::strerror(errno));
    }
    const unsigned flags = MHD_USE_EPOLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME |
                           MHD_USE_ERROR_LOG | MHD_USE_TURBO | (web.tls() ? MHD_USE_TLS : 0);
    gate->daemon = MHD_start_daemon(
        flags, 0, nullptr, nullptr, &GateCall, gate.get(), MHD_OPTION_EXTERNAL_LOGGER, &LibraryLog, this,
        MHD_OPTION_LISTEN_SOCKET, socket, MHD_OPTION_CONNECTION_LIMIT, limits.connections,
        MHD_OPTION_CONNECTION_TIMEOUT, limits.deadlineSeconds, MHD_OPTION_CONNECTION_MEMORY_LIMIT,
        BufferBytes(limits), MHD_OPTION_NOTIFY_COMPLETED, &GateCompleted, gate.get(),
        MHD_OPTION_NOTIFY_CONNECTION, &GateConnected, gate.get(), MHD_OPTION_ARRAY, tls.data(),
        MHD_OPTION_END);
    if (gate->daemon == nullptr) {
        // libmicrohttpd closed the descriptor it was given.
        throw ToolError("cannot serve: libmicrohttpd did not start (see its message above)");
    }
    return gate;
}

void HttpCore::retire(std::unique_ptr<Gate> gate) noexcept {
    std::unique_lock<std::mutex> lock(mutex);
    try {
        std::thread([this, held = gate.get()] { linger(held); }).detach();
    } catch (...) {
        // No thread to wait on (the system has none to give): it stops
        // here, once the answers under way are done.
        lock.unlock();
        gate.reset();
        return;
    }
    gate.release();  // the thread's now; it waits for this lock
    ++retiring;
}

void HttpCore::linger(Gate* gate) noexcept {
    {
        std::unique_lock<std::mutex> lock(mutex);
        const auto until =
            std::chrono::steady_clock::now() + std::chrono::seconds(2 * limits.deadlineSeconds);
        while (!stopping && gate->open != 0 && std::chrono::steady_clock::now() < until) {
            changed.wait_for(lock, std::chrono::milliseconds(100));
        }
    }
    delete gate;
    std::lock_guard<std::mutex> lock(mutex);
    --retiring;
    changed.notify_all();
}

HttpCore::Gate::~Gate() {
    close();
    if (daemon != nullptr) {
        MHD_stop_daemon(daemon);
    }
    if (socket >= 0) {
        ::close(socket);
    }
}

bool HttpCore::Gate::take() {
    std::lock_guard<std::mutex> lock(mutex);
    busy += closing ? 0 : 1;
    return !closing;
}

void HttpCore::Gate::give() {
    std::lock_guard<std::mutex> lock(mutex);
    if (--busy == 0) {
        idle.notify_all();
    }
}

void HttpCore::Gate::close() {
    login.stop();
    std::unique_lock<std::mutex> lock(mutex);
    closing = true;
    idle.wait(lock, [this] { return busy == 0; });
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
    HttpCore::Gate& gate = *core_->active;
    gate.socket = MHD_quiesce_daemon(gate.daemon);
    gate.close();
    {
        std::unique_lock<std::mutex> lock(core_->mutex);
        core_->changed.wait(lock, [this] { return core_->retiring == 0; });
    }
    core_->active.reset();
}

void HttpServer::reload(const WebConfig& web) {
    std::unique_ptr<HttpCore::Gate> fresh = core_->open(web);
    std::unique_ptr<HttpCore::Gate> old = std::move(core_->active);
    core_->active = std::move(fresh);
    // The old daemon accepts no more connections; it keeps the socket's
    // descriptor it was given until it stops.
    old->socket = MHD_quiesce_daemon(old->daemon);
    old->draining = true;
    core_->retire(std::move(old));
}

unsigned HttpServer::port() const { return BoundPort(core_->listener); }

}  // namespace voractl
