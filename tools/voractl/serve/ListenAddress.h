// Where the exporter listens: "ADDR:PORT", "[IPv6]:PORT" or ":PORT" (every
// address, IPv4 clients too), and the socket that listens there.
#pragma once

#include <sys/socket.h>

#include <string>

namespace voractl {

struct ListenAddress {
    sockaddr_storage address{};
    socklen_t length = 0;
    std::string text;  // as given, for messages
};

// Throws a usage ToolError naming what is wrong.
ListenAddress ParseListenAddress(const std::string& text);

// "127.0.0.1:19719" or "[::1]:19719", with `port` for the one given.
std::string AddressText(const ListenAddress& listen, unsigned port);

// A listening socket bound to the address; throws ToolError when it cannot
// be had.
int Listen(const ListenAddress& listen);

// The port a socket is bound to; 0 when it cannot be told.
unsigned BoundPort(int socket);

}  // namespace voractl
