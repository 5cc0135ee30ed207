#include "ThrottledLog.h"

#include <cstdio>

namespace voractl {

ThrottledLog::ThrottledLog(std::string what, std::chrono::seconds period)
    : what_(std::move(what)), period_(period) {}

ThrottledLog::~ThrottledLog() {
    if (held_ > 0) {
        std::fprintf(stderr, "voractl: %lu more %s not shown\n", held_, what_.c_str());
    }
}

void ThrottledLog::say(const std::string& message) {
    const auto now = std::chrono::steady_clock::now();
    std::lock_guard<std::mutex> lock(mutex_);
    if (said_ && now - last_ < period_) {
        ++held_;
        return;
    }
    if (held_ > 0) {
        std::fprintf(stderr, "voractl: %s (and %lu more %s not shown)\n", message.c_str(), held_,
                     what_.c_str());
    } else {
        std::fprintf(stderr, "voractl: %s\n", message.c_str());
    }
    said_ = true;
    last_ = now;
    held_ = 0;
}

}  // namespace voractl
