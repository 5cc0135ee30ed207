#include "WorkQueue.h"

#include "ToolError.h"

namespace voractl {

WorkQueue::WorkQueue(unsigned threads, size_t bound) : bound_(bound) {
    try {
        for (unsigned i = 0; i < threads; ++i) {
            threads_.emplace_back([this] { run(); });
        }
    } catch (...) {
        stop();  // the threads started, before the system refused one
        throw;
    }
}

WorkQueue::~WorkQueue() { stop(); }

void WorkQueue::stop() noexcept {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    ready_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

bool WorkQueue::post(std::function<void()> job) {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (jobs_.size() >= bound_) {
            return false;
        }
        jobs_.push_back(std::move(job));
    }
    ready_.notify_one();
    return true;
}

void WorkQueue::run() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        ready_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
        if (jobs_.empty()) {
            return;  // stopping, and nothing left to do
        }
        std::function<void()> job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        try {
            job();
        } catch (...) {
            // A job answers for itself; this one could not, and the thread
            // goes on with the next.
            ReportFailure(nullptr, std::current_exception());
        }
        lock.lock();
    }
}

}  // namespace voractl
