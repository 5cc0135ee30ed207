#include "CallThread.h"

#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>

#include "ToolError.h"

namespace voractl {

// Shared by the object and its thread, so that a thread left in a call
// still has it when the call returns.
struct CallThread::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> jobs;
    bool stopping = false;
    bool running = false;
    unsigned long long posted = 0;
    unsigned long long done = 0;

    void run() {
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            changed.wait(lock, [this] { return stopping || !jobs.empty(); });
            if (jobs.empty()) {
                return;
            }
            std::function<void()> job = std::move(jobs.front());
            jobs.pop_front();
            running = true;
            lock.unlock();
            try {
                job();
            } catch (...) {
                ReportFailure(nullptr, std::current_exception());
            }
            job = nullptr;  // what it holds goes before it is counted done
            lock.lock();
            running = false;
            ++done;
            changed.notify_all();
        }
    }
};

CallThread::CallThread()
    : state_(std::make_shared<State>()), thread_([state = state_] { state->run(); }) {}

CallThread::~CallThread() {
    bool stuck;
    {
        std::lock_guard<std::mutex> lock(state_->mutex);
        state_->stopping = true;
        stuck = state_->running;
        state_->jobs.clear();  // not begun: never will be
        state_->changed.notify_all();
    }
    if (stuck) {
        thread_.detach();
    } else {
        thread_.join();
    }
}

void CallThread::post(std::function<void()> job) {
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->jobs.push_back(std::move(job));
    ++state_->posted;
    state_->changed.notify_all();
}

bool CallThread::await(std::function<void()> job, Clock::time_point deadline) {
    post(std::move(job));
    return idleBy(deadline);
}

bool CallThread::idleBy(Clock::time_point deadline) {
    std::unique_lock<std::mutex> lock(state_->mutex);
    const unsigned long long posted = state_->posted;
    return state_->changed.wait_until(lock, deadline, [&] { return state_->done >= posted; });
}

Clock::time_point After(double seconds) {
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

void Leave(int status) {
    std::fflush(stdout);
    std::fflush(stderr);
    _exit(status);
}

}  // namespace voractl
