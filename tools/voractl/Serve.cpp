#include "Serve.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Exporter.h"
#include "Format.h"
#include "Http.h"
#include "Sampler.h"
#include "Session.h"

namespace voractl {

namespace {

// "127.0.0.1:19719" or "[::1]:19719", with the port actually bound.
std::string AddressText(const ListenAddress& listen, unsigned port) {
    char host[INET6_ADDRSTRLEN] = "";
    if (listen.address.ss_family == AF_INET6) {
        inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6*>(&listen.address)->sin6_addr, host,
                  sizeof host);
        return "[" + std::string(host) + "]:" + std::to_string(port);
    }
    inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(&listen.address)->sin_addr, host,
              sizeof host);
    return std::string(host) + ":" + std::to_string(port);
}

}  // namespace

int Serve(Context& context) {
    const ListenAddress listen =
        ParseListenAddress(context.options.listen.empty() ? kDefaultListen : context.options.listen);
    const WebConfig web =
        context.options.webConfig.empty() ? WebConfig{} : LoadWebConfig(context.options.webConfig);

    // SIGTERM and SIGINT are taken by this thread alone, between scrapes'
    // work on others; a client that goes away never raises SIGPIPE.
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTERM);
    sigaddset(&stop, SIGINT);
    pthread_sigmask(SIG_BLOCK, &stop, nullptr);
    signal(SIGPIPE, SIG_IGN);

    Exporter exporter(context.session);
    uint32_t status = exporter.tryOpen();
    if (status != 0) {
        std::fprintf(stderr, "voractl: the module did not come up (%s); serving voradrv_up 0 and "
                             "trying again\n", StatusText(status).c_str());
    }
    {
        // The page's samples: every --interval seconds (2 by default) while
        // pages ask, the last 300 kept; a minute (or ten intervals) after the
        // last request, no more readings.
        const double interval = context.options.interval;
        Sampler sampler([&exporter] { return exporter.records(); }, interval, 300,
                        std::max(60.0, 10 * interval));
        HttpServer::Site site;
        site.metrics = [&exporter] { return exporter.scrape(); };
        site.document = [&exporter] { return exporter.document(); };
        site.library = [&exporter] { return exporter.library(); };
        site.items = [&sampler] { return sampler.items(); };
        site.samples = [&sampler](uint64_t since) { return sampler.samples(since); };
        HttpServer server(listen, HttpLimits{}, web, std::move(site));
        const std::string url = std::string(web.tls() ? "https" : "http") + "://" +
                                AddressText(listen, server.port());
        std::fprintf(stderr, "voractl: serving the board's metrics on %s/metrics%s\n", url.c_str(),
                     web.users.empty() ? "" : " (basic auth)");
        std::fprintf(stderr, "voractl: the board page is %s/\n", url.c_str());
        // A module that did not come up is tried again after 1, 2, 4, ...
        // seconds, a minute at most between tries.
        long delay = 1;
        for (;;) {
            const timespec wait{exporter.opened() ? 3600 : delay, 0};
            const int signal = sigtimedwait(&stop, nullptr, &wait);
            if (signal == SIGTERM || signal == SIGINT) {
                break;
            }
            if (signal < 0 && errno != EAGAIN && errno != EINTR) {
                throw ToolError(std::string("cannot wait for signals: ") + std::strerror(errno));
            }
            if (!exporter.opened()) {
                status = exporter.tryOpen();
                if (status == 0) {
                    std::fprintf(stderr, "voractl: the module came up\n");
                    delay = 1;
                } else {
                    delay = std::min(delay * 2, 60L);
                }
            }
        }
        std::fprintf(stderr, "voractl: stopping\n");
    }  // every connection closed, its thread ended; the sampler stopped
    exporter.close();
    return 0;
}

}  // namespace voractl
