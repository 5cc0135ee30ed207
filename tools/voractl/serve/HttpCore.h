// The HTTP server's insides, shared by Http.cpp (the server and its
// libmicrohttpd daemons) and HttpGate.cpp (the requests each daemon takes).
#pragma once

#include <microhttpd.h>

#include <atomic>
#include <condition_variable>
#include <cstdarg>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "ConnectionGuard.h"
#include "Http.h"
#include "Login.h"
#include "ThrottledLog.h"
#include "WorkQueue.h"

namespace voractl {

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
    // The answer when not even an error can be made (memory ran out): made
    // beforehand, it costs nothing to give.
    const std::string cannotAnswer = "The exporter cannot answer now: try again.\n";

    std::unique_ptr<Gate> active;
    std::mutex mutex;  // guards what follows
    std::condition_variable changed;
    bool stopping = false;
    unsigned retiring = 0;  // replaced daemons not yet stopped

    HttpCore(const ListenAddress& listen, const HttpLimits& limits, HttpServer::Site site);
    ~HttpCore();

    // A daemon on the listening socket, serving with `web`; throws
    // ToolError when it cannot start.
    std::unique_ptr<Gate> open(const WebConfig& web);
    // Stops a replaced daemon once its connections are done with (its
    // answers close them; idle ones meet the guard's deadline), or when the
    // server stops.
    void retire(std::unique_ptr<Gate> gate) noexcept;

private:
    void linger(Gate* gate) noexcept;
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
    // Closes, then stops the daemon.
    ~Gate();

    // Takes work for a connection; false once closing.
    bool take();
    void give();
    // Takes no more work and waits for the work under way: after this, no
    // connection is set aside and the daemon can stop.
    void close();

    // The steps of a request (HttpGate.cpp).
    MHD_Result inspect(MHD_Connection* connection, const char* url, const char* method);
    MHD_Result start(MHD_Connection* connection, const char* url, Exchange& exchange);
    MHD_Result resume(MHD_Connection* connection, const char* url, Exchange& exchange);
    MHD_Result answer(MHD_Connection* connection, Exchange& exchange);
    void work(Exchange& exchange, const std::function<void()>& back) noexcept;
    MHD_Result aside(MHD_Connection* connection, Exchange& exchange,
                     const std::function<bool(std::function<void()>)>& start);
    MHD_Result send(MHD_Connection* connection, const HttpReply& reply);
};

// libmicrohttpd's calls into a gate's daemon (`cls` the Gate; for the log,
// the HttpCore). No exception leaves them: a request that cannot be
// answered (memory ran out) has its connection closed.
MHD_Result GateCall(void* cls, MHD_Connection* connection, const char* url, const char* method,
                    const char* version, const char* upload, size_t* uploadSize, void** state);
void GateCompleted(void* cls, MHD_Connection* connection, void** state,
                   MHD_RequestTerminationCode code);
void GateConnected(void* cls, MHD_Connection* connection, void** socket,
                   MHD_ConnectionNotificationCode code);
void LibraryLog(void* cls, const char* format, va_list arguments);

}  // namespace voractl
