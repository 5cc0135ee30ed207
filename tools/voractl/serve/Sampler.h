// The board page's samples: one thread reads every item at a fixed interval,
// whatever the number of pages open, and keeps a bounded ring of the recent
// samples for the charts. It reads only while pages ask: a while after the
// last request it stops, so that an exporter only scraped by Prometheus
// reads the board only for the scrapes.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "json/JsonPtr.h"

namespace voractl {

class Sampler {
public:
    // Every item's record as "voractl list --json" gives it, of a reading
    // that ends by the deadline; throws when the board cannot be read, null
    // when no reading ended by then.
    using Read = std::function<vorajson::JsonPtr(std::chrono::steady_clock::time_point deadline)>;
    // How long the board's reading under way has taken, in seconds.
    using Busy = std::function<double()>;

    // Reads the board with `read` every `interval` seconds while pages ask,
    // keeping the last `keep` samples (300 at 2 s: the last ten minutes),
    // and stops reading `idleAfter` seconds after the last request. A
    // reading that takes longer than the interval delays the next sample
    // (none is taken meanwhile); `busy` says for how long.
    Sampler(Read read, double interval, size_t keep, double idleAfter, Busy busy = nullptr);
    // Stops the thread.
    ~Sampler();
    Sampler(const Sampler&) = delete;
    Sampler& operator=(const Sampler&) = delete;

    // Calls `done` with the latest records, as "voractl list --json" prints
    // them: at once, or, when the sampler was idle, with those of a fresh
    // reading, from the sampling thread (with the latest when none ends
    // within an interval, a second at least). No thread waits meanwhile.
    void items(std::function<void(std::string)> done);
    // The same, waited for.
    std::string items();
    // {"interval": S, "started": T, "last": N, "samples": [{"seq", "time",
    // "values": {"<id>": value}}]}: the kept samples after `since` (0: all
    // of them); with any, the newest one's "texts" {"<id>": the value as
    // voractl shows it} and "alarms" [ids of values outside their range].
    // "started" (when this exporter started, in seconds since 1970) tells a
    // page that the exporter was restarted, and its numbering with it;
    // "waiting" (seconds) that the board's reading under way has taken
    // longer than the interval, so the next sample is late.
    std::string samples(uint64_t since);

private:
    struct Sample {
        uint64_t seq;
        double time;        // seconds since 1970
        std::string values;  // a JSON object: item id -> true value (null: unreadable)
    };

    struct Asking {
        std::chrono::steady_clock::time_point deadline;
        std::function<void(std::string)> done;
    };

    void run() noexcept;
    void take() noexcept;
    // Answers the requests for items waiting for a sample with the latest
    // items: `all` of them (a sample was taken, or none can be), else
    // those whose deadline came.
    void answer(bool all) noexcept;
    // A page asked: sampling goes on (or starts again).
    void touch();

    const Read read_;
    const Busy busy_;
    const double interval_;
    const size_t keep_;
    const double started_;  // seconds since 1970
    std::mutex mutex_;
    std::condition_variable wake_;   // the sampling thread's: a stop or a request
    std::condition_variable taken_;  // a sample was taken
    bool stopping_ = false;
    bool idle_ = true;
    std::chrono::steady_clock::time_point lastRequest_{};
    const std::chrono::steady_clock::duration idleAfter_;
    std::string items_ = "[]";
    std::string texts_ = "{}";   // of the newest sample
    std::string alarms_ = "[]";  // of the newest sample
    std::deque<Sample> ring_;
    std::vector<Asking> asking_;  // for items, while idle
    uint64_t seq_ = 0;
    std::thread thread_;
};

}  // namespace voractl
