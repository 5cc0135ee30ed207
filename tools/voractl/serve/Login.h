// Basic auth against the web configuration's bcrypt hashes, hardened as the
// exporter toolkit hardens it:
// - each user and password is checked once and the verdict kept, so a
//   scrape costs a lookup, not a bcrypt run (tens to hundreds of
//   milliseconds of a core); verdicts that let a client in are kept apart
//   from refusals, so that wrong passwords cannot push them out;
// - checks run one at a time on a thread of their own, so clients that try
//   passwords take at most one core, and never the thread that serves;
// - an unknown user costs the same check as a known one (against the
//   costliest hash of the configuration), so timing tells no user names;
// - failed logins are logged, at most one line in 10 seconds.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "ThrottledLog.h"
#include "WorkQueue.h"

namespace voractl {

class Login {
public:
    // `users`: user name -> bcrypt hash; none: no login is asked for.
    explicit Login(const std::map<std::string, std::string>& users);
    Login(const Login&) = delete;
    Login& operator=(const Login&) = delete;

    bool required() const { return !users_.empty(); }

    enum class Verdict { Allowed, Refused, Unchecked };
    // What a check of this user and password found before, if it was kept.
    Verdict known(const std::string& user, const std::string& password);

    // Checks the password on the login thread and calls `done` there with
    // whether it lets the user in. False (and no call) when 64 checks are
    // already waiting.
    bool check(const std::string& user, const std::string& password,
               std::function<void(bool allowed)> done);

    // Logs a refused login from `address`, within the log's bound.
    void refused(const std::string& user, const std::string& address);

    // Checks still waiting are answered at once, as refused, unlogged: a
    // server that stops does not run a queue of bcrypt checks first.
    void stop() { stopping_ = true; }
    bool stopping() const { return stopping_; }

private:
    // A bounded set of verdicts, the oldest dropped first.
    class Kept {
    public:
        explicit Kept(size_t capacity) : capacity_(capacity) {}
        bool has(const std::string& key) const { return keys_.count(key) != 0; }
        void add(const std::string& key);

    private:
        size_t capacity_;
        std::set<std::string> keys_;
        std::deque<std::string> order_;
    };

    bool verify(const std::string& user, const std::string& password) const;

    const std::map<std::string, std::string> users_;
    std::string decoy_;  // the hash an unknown user is checked against
    std::atomic<bool> stopping_{false};
    std::mutex mutex_;   // guards the verdicts
    Kept allowed_{64};
    Kept refused_{256};
    ThrottledLog log_{"failed logins", std::chrono::seconds(10)};
    std::unique_ptr<WorkQueue> checks_;  // last: its thread ends first
};

}  // namespace voractl
