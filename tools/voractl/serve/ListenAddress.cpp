#include "ListenAddress.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "ToolError.h"

namespace voractl {

namespace {

unsigned ParsePort(const std::string& text) {
    char* end = nullptr;
    const unsigned long port = std::strtoul(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || port > 65535 || text[0] == '-') {
        throw ToolError("--listen: the port must be a number from 0 to 65535, not \"" + text + "\"",
                        true);
    }
    return static_cast<unsigned>(port);
}

// The address of `host` (every address when empty) with `port`.
ListenAddress ParseHost(std::string host, unsigned port) {
    const bool bracketed = host.size() >= 2 && host.front() == '[' && host.back() == ']';
    if (bracketed) {
        host = host.substr(1, host.size() - 2);
    }
    if (host == "localhost") {
        host = "127.0.0.1";
    }
    ListenAddress listen;
    sockaddr_in v4{};
    sockaddr_in6 v6{};
    if (!host.empty() && !bracketed && inet_pton(AF_INET, host.c_str(), &v4.sin_addr) == 1) {
        v4.sin_family = AF_INET;
        v4.sin_port = htons(static_cast<uint16_t>(port));
        std::memcpy(&listen.address, &v4, sizeof v4);
        listen.length = sizeof v4;
        return listen;
    }
    if (!host.empty() && (inet_pton(AF_INET6, host.c_str(), &v6.sin6_addr) != 1 ||
                          (!bracketed && host.find(':') == std::string::npos))) {
        throw ToolError("--listen: \"" + host +
                            "\" is not an IPv4 address, a bracketed IPv6 address or localhost",
                        true);
    }
    v6.sin6_family = AF_INET6;  // an empty host: in6addr_any, all zeros
    v6.sin6_port = htons(static_cast<uint16_t>(port));
    std::memcpy(&listen.address, &v6, sizeof v6);
    listen.length = sizeof v6;
    return listen;
}

}  // namespace

ListenAddress ParseListenAddress(const std::string& text) {
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos) {
        throw ToolError("--listen needs ADDRESS:PORT, not \"" + text + "\"", true);
    }
    const unsigned port = ParsePort(text.substr(colon + 1));
    ListenAddress listen = ParseHost(text.substr(0, colon), port);
    listen.text = text;
    return listen;
}

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

unsigned BoundPort(int socket) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        return 0;
    }
    return ntohs(address.ss_family == AF_INET6
                     ? reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port
                     : reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

}  // namespace voractl
