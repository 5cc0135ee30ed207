#include "Serve.h"

#include <signal.h>
#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include "CallThread.h"
#include "Exporter.h"
#include "Format.h"
#include "Http.h"
#include "ListenAddress.h"
#include "Sampler.h"
#include "Session.h"
#include "Site.h"
#include "ToolError.h"

namespace voractl {

namespace {

// The limits, with as many connections as the process may open files for
// (less a margin for the module and the board library). Like Go's servers,
// the exporter first raises its own limit on open files to the most the
// system lets it have.
HttpLimits Limits() {
    HttpLimits limits;
    rlimit files{};
    if (getrlimit(RLIMIT_NOFILE, &files) == 0) {
        if (files.rlim_cur < files.rlim_max) {
            files.rlim_cur = files.rlim_max;
            setrlimit(RLIMIT_NOFILE, &files);
            getrlimit(RLIMIT_NOFILE, &files);
        }
        const rlim_t margin = 64;
        if (files.rlim_cur < limits.connections + margin) {
            limits.connections =
                static_cast<unsigned>(files.rlim_cur > 2 * margin ? files.rlim_cur - margin : margin);
        }
    }
    return limits;
}

// Rereads the web configuration (and its certificate and key) into the
// server; a configuration that cannot be read or served leaves the one in
// use, and says so.
void Reload(HttpServer& server, const std::string& path) {
    if (path.empty()) {
        std::fprintf(stderr, "voractl: SIGHUP: there is no --web-config to reread\n");
        return;
    }
    try {
        const WebConfig web = LoadWebConfig(path);
        server.reload(web);
        std::fprintf(stderr, "voractl: SIGHUP: serving with the web configuration %s as reread%s\n",
                     path.c_str(), web.users.empty() ? "" : " (basic auth)");
    } catch (...) {
        const Exit failure = ExitFor(std::current_exception());
        std::fprintf(stderr, "voractl: SIGHUP: %s%s; the web configuration in use is kept\n",
                     failure.reason, failure.detail);
    }
}

// SIGTERM, SIGINT and SIGHUP, blocked: they are taken by the thread that
// waits for them alone, between the scrapes' work on others. A client that
// goes away never raises SIGPIPE.
sigset_t TakeSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    return signals;
}

// Serves until SIGTERM or SIGINT, rereading the web configuration at
// SIGHUP. A module that did not come up is tried again after 1, 2, 4, ...
// seconds, a minute at most between tries; an initialise that takes longer
// is not waited for, so a signal is taken at once.
void ServeUntilStopped(const sigset_t& signals, Exporter& exporter, HttpServer& server,
                       const std::string& webConfig) {
    long delay = 1;
    for (;;) {
        const timespec wait{exporter.opened() ? 3600 : delay, 0};
        const int signal = sigtimedwait(&signals, nullptr, &wait);
        if (signal == SIGTERM || signal == SIGINT) {
            return;
        }
        if (signal == SIGHUP) {
            Reload(server, webConfig);
        }
        if (signal < 0 && errno != EAGAIN && errno != EINTR) {
            throw ToolError(std::string("cannot wait for signals: ") + std::strerror(errno));
        }
        if (!exporter.opened()) {
            const std::optional<uint32_t> status = exporter.open(After(0.1));
            delay = status && *status == 0 ? 1 : std::min(delay * 2, 60L);
        }
    }
}

// Comes up: initialise is waited for this long before serving begins (and
// goes on meanwhile when it takes longer).
constexpr double kStartSeconds = 5;
// At SIGTERM or SIGINT, the scrapes waiting for a reading are answered
// within kAnswerSeconds, and the exporter ends within kStopSeconds: a call
// into the board library that has not returned by then never is waited
// for, and the module is not uninitialised.
constexpr double kAnswerSeconds = 2;
constexpr double kStopSeconds = 5;

// Initialises the module, waiting kStartSeconds at most; says when it did
// not come up, or has not yet.
void Start(Exporter& exporter) {
    const std::optional<uint32_t> status = exporter.open(After(kStartSeconds));
    if (!status) {
        std::fprintf(stderr, "voractl: the module's initialise has not answered in %g s; serving "
                             "voradrv_up 0 until it does\n", kStartSeconds);
    } else if (*status != 0) {
        std::fprintf(stderr, "voractl: the module did not come up (%s); serving voradrv_up 0 and "
                             "trying again\n", StatusText(*status).c_str());
    }
}

}  // namespace

int Serve(Context& context) {
    const Options& options = context.options;
    const ListenAddress listen =
        ParseListenAddress(options.listen.empty() ? kDefaultListen : options.listen);
    const WebConfig web =
        options.webConfig.empty() ? WebConfig{} : LoadWebConfig(options.webConfig);
    const sigset_t signals = TakeSignals();
    Exporter exporter(context.session);
    Start(exporter);
    Clock::time_point end;
    {
        // The page's samples: every --interval seconds (2 by default) while
        // pages ask, the last 300 kept; a minute (or ten intervals) after the
        // last request, no more readings. They share the scrapes' readings.
        Sampler sampler([&exporter](Clock::time_point by) { return exporter.records(by); },
                        options.interval, 300, std::max(60.0, 10 * options.interval),
                        [&exporter] { return exporter.readingFor(); });
        HttpServer server(listen, Limits(), web, ExporterSite(exporter, sampler));
        const std::string url = std::string(web.tls() ? "https" : "http") + "://" +
                                AddressText(listen, server.port());
        std::fprintf(stderr, "voractl: serving the board's metrics on %s/metrics%s\n", url.c_str(),
                     web.users.empty() ? "" : " (basic auth)");
        std::fprintf(stderr, "voractl: the board page is %s/\n", url.c_str());
        ServeUntilStopped(signals, exporter, server, options.webConfig);
        std::fprintf(stderr, "voractl: stopping\n");
        end = After(kStopSeconds);
        exporter.stop(std::min(end, After(kAnswerSeconds)));
    }  // every connection closed, its thread ended; the sampler stopped
    if (!exporter.close(end)) {
        std::fprintf(stderr, "voractl: the board library has not returned from a call, which "
                             "cannot be interrupted: leaving without uninitialising the module\n");
        context.session.abandon();
        Leave(1);
    }
    return 0;
}

}  // namespace voractl
