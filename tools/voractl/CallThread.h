// The one thread that calls into the module, for a command that must not
// wait for ever on a board library that does not answer: whoever asks can
// stop waiting at a deadline. A call into a library cannot be interrupted,
// so a call that never returns keeps this thread for the rest of the
// process, which must then end without uninitialising the module (Leave).
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace voractl {

using Clock = std::chrono::steady_clock;

class CallThread {
public:
    // Starts the thread; throws std::system_error when the system gives none.
    CallThread();
    // Ends the thread; jobs not begun are dropped. A job still in a call
    // is left to it (the thread is detached, and what it needs of this
    // object lives on with it).
    ~CallThread();
    CallThread(const CallThread&) = delete;
    CallThread& operator=(const CallThread&) = delete;

    // Runs `job` after the jobs posted before it. A job answers for itself:
    // what it throws is reported on standard error.
    void post(std::function<void()> job);
    // Posts `job` and waits until it has run or `deadline` passed; true when
    // it ran by then.
    bool await(std::function<void()> job, Clock::time_point deadline);
    // Waits until every job posted has run, or `deadline`; true when they have.
    bool idleBy(Clock::time_point deadline);

private:
    struct State;
    std::shared_ptr<State> state_;
    std::thread thread_;
};

// The deadline `seconds` from now.
Clock::time_point After(double seconds);

// Ends the process with `status` after flushing voractl's output, without
// running anything more of the module, the board library or their exit
// handlers (a thread is still inside the library): what a command does once
// it stopped waiting for a call.
[[noreturn]] void Leave(int status);

}  // namespace voractl
