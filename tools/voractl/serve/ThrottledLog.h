// Messages a client can cause as often as it likes (a failed login, a cut
// connection, the HTTP library's complaints) reach standard error at most
// once per period: the first is printed, those after it within the period
// are only counted, and the count goes out with the next one printed, so a
// flood of bad clients costs the log a line every few seconds.
#pragma once

#include <chrono>
#include <mutex>
#include <string>

namespace voractl {

class ThrottledLog {
public:
    // `what`: the messages' kind in the plural ("failed logins"), for the
    // count of those not shown.
    ThrottledLog(std::string what, std::chrono::seconds period);
    // Prints what is still counted.
    ~ThrottledLog();
    ThrottledLog(const ThrottledLog&) = delete;
    ThrottledLog& operator=(const ThrottledLog&) = delete;

    // "voractl: <message>", unless one was printed within the period.
    void say(const std::string& message) noexcept;

private:
    const std::string what_;
    const std::chrono::steady_clock::duration period_;
    std::mutex mutex_;
    bool said_ = false;
    std::chrono::steady_clock::time_point last_{};
    unsigned long held_ = 0;  // not shown since the last one printed
};

}  // namespace voractl
