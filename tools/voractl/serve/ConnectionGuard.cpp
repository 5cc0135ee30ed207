#include "ConnectionGuard.h"

#include <sys/socket.h>

namespace voractl {

struct ConnectionGuard::Peer {
    int fd;
    std::string address;
    bool waiting = false;
    std::chrono::steady_clock::time_point since;
    std::list<Peer*>::iterator place;  // in waiting_, while waiting
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
    Peer* peer = new Peer{fd, std::move(address), false, {}, {}};
    std::lock_guard<std::mutex> lock(mutex_);
    ++open_;
    if (open_ >= connections_ && !waiting_.empty()) {
        cutOldest("it had waited longest when all connections were taken");
    }
    peer->waiting = true;
    peer->since = std::chrono::steady_clock::now();
    peer->place = waiting_.insert(waiting_.end(), peer);
    if (waiting_.size() == 1) {
        changed_.notify_all();
    }
    return peer;
}

void ConnectionGuard::arrived(Peer* peer) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (peer->waiting) {
        waiting_.erase(peer->place);
        peer->waiting = false;
    }
}

void ConnectionGuard::answered(Peer* peer) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (peer->waiting) {
        waiting_.erase(peer->place);
    }
    peer->waiting = true;
    peer->since = std::chrono::steady_clock::now();
    peer->place = waiting_.insert(waiting_.end(), peer);
    if (waiting_.size() == 1) {
        changed_.notify_all();
    }
}

void ConnectionGuard::closed(Peer* peer) {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (peer->waiting) {
            waiting_.erase(peer->place);
        }
        --open_;
    }
    delete peer;
}

void ConnectionGuard::cutOldest(const char* why) {
    Peer* oldest = waiting_.front();
    waiting_.pop_front();
    oldest->waiting = false;
    // The socket stays open (its thread closes it, after closed()), so the
    // number cannot have gone to another connection meanwhile.
    shutdown(oldest->fd, SHUT_RDWR);
    log_.say("cut the connection from " + oldest->address + ": " + why);
}

void ConnectionGuard::watch() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!stopping_) {
        if (waiting_.empty()) {
            changed_.wait(lock);
            continue;
        }
        // Deadlines run in the order connections began to wait.
        const auto due = waiting_.front()->since + deadline_;
        if (std::chrono::steady_clock::now() >= due) {
            cutOldest("no whole request within the deadline");
        } else {
            changed_.wait_until(lock, due);
        }
    }
}

}  // namespace voractl
