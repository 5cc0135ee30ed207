#include "ConnectionGuard.h"

#include <sys/socket.h>

namespace voractl {

struct ConnectionGuard::Peer {
    int fd;
    std::string address;
    bool waiting = false;
    std::chrono::steady_clock::time_point since;
    std::list<Peer>::iterator place;  // its own node, in waiting_ or answering_
};

ConnectionGuard::ConnectionGuard(std::chrono::seconds deadline, unsigned connections)
    : deadline_(deadline), connections_(connections), watcher_([this] { watch(); }) {}

ConnectionGuard::~ConnectionGuard() {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    watcher_.join();
}

ConnectionGuard::Peer* ConnectionGuard::opened(int fd, std::string address) {
    std::list<Peer> made;  // its node, made before the lock is taken
    made.push_back(Peer{fd, std::move(address), false, {}, {}});
    Peer& peer = made.back();
    peer.place = made.begin();
    std::lock_guard<std::mutex> lock(mutex_);
    ++open_;
    if (open_ >= connections_ && !waiting_.empty()) {
        cutOldest("it had waited longest when all connections were taken");
    }
    answering_.splice(answering_.end(), made);
    await(peer);
    return &peer;
}

void ConnectionGuard::arrived(Peer* peer) noexcept {
    std::lock_guard<std::mutex> lock(mutex_);
    answer(*peer);
}

void ConnectionGuard::answered(Peer* peer) noexcept {
    std::lock_guard<std::mutex> lock(mutex_);
    await(*peer);
}

void ConnectionGuard::closed(Peer* peer) noexcept {
    std::lock_guard<std::mutex> lock(mutex_);
    (peer->waiting ? waiting_ : answering_).erase(peer->place);
    --open_;
}

void ConnectionGuard::await(Peer& peer) noexcept {
    answer(peer);
    peer.waiting = true;
    peer.since = std::chrono::steady_clock::now();
    waiting_.splice(waiting_.end(), answering_, peer.place);
    if (waiting_.size() == 1) {
        changed_.notify_all();
    }
}

void ConnectionGuard::answer(Peer& peer) noexcept {
    if (peer.waiting) {
        answering_.splice(answering_.end(), waiting_, peer.place);
        peer.waiting = false;
    }
}

void ConnectionGuard::cutOldest(const char* why) noexcept {
    Peer& oldest = waiting_.front();
    answer(oldest);
    // The socket stays open (its thread closes it, after closed()), so the
    // number cannot have gone to another connection meanwhile.
    shutdown(oldest.fd, SHUT_RDWR);
    try {
        log_.say("cut the connection from " + oldest.address + ": " + why);
    } catch (...) {
        // A line that cannot be made (memory ran out) is dropped.
    }
}

void ConnectionGuard::watch() noexcept {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!stopping_) {
        if (waiting_.empty()) {
            changed_.wait(lock);
            continue;
        }
        // Deadlines run in the order connections began to wait.
        const auto due = waiting_.front().since + deadline_;
        if (std::chrono::steady_clock::now() >= due) {
            cutOldest("no whole request within the deadline");
        } else {
            changed_.wait_until(lock, due);
        }
    }
}

}  // namespace voractl
