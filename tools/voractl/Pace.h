// Reading the board again and again at a steady pace (watch, record
// --duration) until Ctrl-C or SIGTERM.
#pragma once

#include <signal.h>
#include <time.h>

namespace voractl {

// SIGINT and SIGTERM end the readings between two of them, so the module is
// uninitialised on the way out (a second one ends the process at once); a
// reader that goes away (SIGPIPE) shows as a failed write instead of
// killing the process. While it lives.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    // True once a stop signal came.
    static bool stopped();
    // Waits until `deadline` (monotonic clock) or a stop signal.
    static void sleepUntil(const timespec& deadline);

private:
    struct sigaction oldInt_ {};
    struct sigaction oldTerm_ {};
    struct sigaction oldPipe_ {};
};

// When each reading is due: each one interval after the one before was due,
// however long the reading took; one that took longer than the interval is
// not caught up.
class Pace {
public:
    explicit Pace(double interval);
    // Waits until the next reading is due; false when a stop signal came
    // first.
    bool wait();
    // True when the last reading overran its interval, so the next is due at once.
    bool overran() const { return overran_; }

private:
    double interval_;
    bool overran_ = false;
    timespec next_{};
};

}  // namespace voractl
