// Keeps slow and idle clients from holding the exporter's connections, so
// that they can never keep Prometheus out:
// - every connection must send its request whole (request line and
//   headers; a TLS handshake first) within a deadline of opening or of its
//   previous answer, however slowly it trickles, or it is cut;
// - when every connection the exporter takes is open, the one that has
//   waited longest for its request is cut, so a new client always gets in.
// A connection whose request has arrived is being answered and is never
// cut for it. Cutting shuts the socket down; the HTTP library sees the
// connection end and closes it on its own thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <string>
#include <thread>

#include "ThrottledLog.h"

namespace voractl {

class ConnectionGuard {
public:
    ConnectionGuard(std::chrono::seconds deadline, unsigned connections);
    ~ConnectionGuard();
    ConnectionGuard(const ConnectionGuard&) = delete;
    ConnectionGuard& operator=(const ConnectionGuard&) = delete;

    struct Peer;
    // A connection was accepted on socket `fd` from `address`; its request
    // is awaited from now.
    Peer* opened(int fd, std::string address);
    // Its request arrived: it is answered, with no deadline.
    void arrived(Peer* peer) noexcept;
    // Its answer went out: the next request is awaited from now.
    void answered(Peer* peer) noexcept;
    // It is closing; called before its socket is closed.
    void closed(Peer* peer) noexcept;

private:
    void watch() noexcept;
    // Moves `peer` to the end of the waiting list or to the others. Holds mutex_.
    void await(Peer& peer) noexcept;
    void answer(Peer& peer) noexcept;
    // Shuts the oldest waiting connection down. Holds mutex_.
    void cutOldest(const char* why) noexcept;

    const std::chrono::steady_clock::duration deadline_;
    const unsigned connections_;
    std::mutex mutex_;
    std::condition_variable changed_;
    // Every open connection is in one of these; it moves between them
    // without allocating, so only opened() can run out of memory.
    std::list<Peer> waiting_;    // those awaiting a request, oldest first
    std::list<Peer> answering_;  // the others
    unsigned open_ = 0;
    bool stopping_ = false;
    ThrottledLog log_{"connections cut", std::chrono::seconds(10)};
    std::thread watcher_;
};

}  // namespace voractl
