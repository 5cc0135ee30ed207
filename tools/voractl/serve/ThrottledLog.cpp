#include "ThrottledLog.h"

#include <cstdio>

namespace voractl {

ThrottledLog::ThrottledLog(std::string what, std::chrono::seconds period)
    : what_(std::move(what)), period_(period) {}

ThrottledLog::~ThrottledLog() {
    if (held_ > 0) {
        std::fprintf(stderr, "voractl: %s not shown: %lu\n", what_.c_str(), held_);
    }
}

void ThrottledLog::say(const std::string& message) noexcept {
    const auto now = std::chrono::steady_clock::now();
    std::lock_guard<std::mutex> lock(mutex_);
    if (said_ && now - last_ < period_) {
        ++held_;
        return;
    }
    if (held_ > 0) {
        std::fprintf(stderr, "voractl: %s (%s not shown since the last: %lu)\n", message.c_str(),
                     what_.c_str(), held_);
    } else {
        std::fprintf(stderr, "voractl: %s\n", message.c_str());
    }
    said_ = true;
    last_ = now;
    held_ = 0;
}

}  // namespace voractl
