#include "Pace.h"

#include <poll.h>

#include <cmath>
#include <csignal>

namespace voractl {

namespace {

volatile std::sig_atomic_t gStop = 0;

// The first stop signal ends the readings between two of them; a second,
// for a reading that does not end (a board library that never answers),
// ends the process at once, as the signal does by default.
void OnStopSignal(int signal) {
    if (gStop != 0) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
    gStop = 1;
}

timespec Add(timespec at, double seconds) {
    const double whole = std::floor(seconds);
    at.tv_sec += static_cast<time_t>(whole);
    at.tv_nsec += static_cast<long>((seconds - whole) * 1e9);
    if (at.tv_nsec >= 1000000000L) {
        at.tv_sec += 1;
        at.tv_nsec -= 1000000000L;
    }
    return at;
}

}  // namespace

StopSignals::StopSignals() {
    gStop = 0;
    struct sigaction action {};
    action.sa_handler = OnStopSignal;
    action.sa_flags = SA_RESTART;  // the module's reads go on; the sleep ends
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &oldInt_);
    sigaction(SIGTERM, &action, &oldTerm_);
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    sigaction(SIGPIPE, &ignore, &oldPipe_);
}

StopSignals::~StopSignals() {
    sigaction(SIGINT, &oldInt_, nullptr);
    sigaction(SIGTERM, &oldTerm_, nullptr);
    sigaction(SIGPIPE, &oldPipe_, nullptr);
}

bool StopSignals::stopped() { return gStop != 0; }

// The signals are blocked from the check to the wait, which unblocks them,
// so none is missed between the two.
void StopSignals::sleepUntil(const timespec& deadline) {
    sigset_t stops;
    sigset_t previous;
    sigemptyset(&stops);
    sigaddset(&stops, SIGINT);
    sigaddset(&stops, SIGTERM);
    sigprocmask(SIG_BLOCK, &stops, &previous);
    for (;;) {
        timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        long long left = (deadline.tv_sec - now.tv_sec) * 1000000000LL + (deadline.tv_nsec - now.tv_nsec);
        if (gStop || left <= 0) {
            break;
        }
        const timespec wait{static_cast<time_t>(left / 1000000000LL), static_cast<long>(left % 1000000000LL)};
        ppoll(nullptr, 0, &wait, &previous);
    }
    sigprocmask(SIG_SETMASK, &previous, nullptr);
}

Pace::Pace(double interval) : interval_(interval) { clock_gettime(CLOCK_MONOTONIC, &next_); }

bool Pace::wait() {
    next_ = Add(next_, interval_);
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    overran_ = now.tv_sec > next_.tv_sec || (now.tv_sec == next_.tv_sec && now.tv_nsec > next_.tv_nsec);
    if (overran_) {
        next_ = now;
    }
    StopSignals::sleepUntil(next_);
    return !StopSignals::stopped();
}

}  // namespace voractl
