// A few threads that run jobs in the order they come, so that work that
// can take long (reading the board, checking a password) never holds up
// the one thread that serves every connection.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace voractl {

class WorkQueue {
public:
    // `threads` run the jobs; at most `bound` wait for one. Throws
    // std::system_error when the system gives no thread.
    WorkQueue(unsigned threads, size_t bound);
    // Runs the jobs still waiting, then ends the threads.
    ~WorkQueue();
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;

    // Queues `job`; false (and nothing queued) when `bound` jobs wait.
    bool post(std::function<void()> job);

private:
    void run();
    // Runs the jobs still waiting, then ends the threads.
    void stop() noexcept;

    const size_t bound_;
    std::mutex mutex_;
    std::condition_variable ready_;
    std::deque<std::function<void()>> jobs_;
    bool stopping_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace voractl
