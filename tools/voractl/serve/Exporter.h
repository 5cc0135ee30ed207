// The exporter's readings of the board: every readable item in the
// Prometheus text format, for the scrapes and the board page's samples.
// Every call into the module is made on one thread of its own, one at a
// time, so that no scrape waits on a board library that is slow or does not
// answer for longer than its scraper waits.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "CallThread.h"
#include "Exposition.h"
#include "Reading.h"
#include "json/JsonPtr.h"

namespace voractl {

class Session;

class Exporter {
public:
    // Starts the thread that answers the scrapes no reading answers in time.
    explicit Exporter(Session& session);
    // Answers the scrapes still waiting and ends that thread.
    ~Exporter();
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;

    // The metrics of a reading, or why it failed.
    using Scraped = std::function<void(std::shared_ptr<const Exposition>, std::exception_ptr)>;

    // Calls `done` with the metrics of a reading that ended after the scrape
    // arrived at `arrived`: the one under way, else a new one. There is never
    // more than one reading at a time: a burst of scrapes (and the page's
    // sampler) costs the board one. When none has ended by `deadline`,
    // `done` gets the exporter's own metrics instead: voradrv_up 0 and how
    // long ago the last complete reading ended. No thread waits meanwhile.
    void scrape(Clock::time_point arrived, Clock::time_point deadline, Scraped done);

    // Every item's record of a reading that ended after this call, as the
    // board page shows it (ShownRecordsJson), an empty array while the
    // module is not up; waits for it, and answers null when the exporter
    // stops first or when `deadline` comes.
    vorajson::JsonPtr records(Clock::time_point deadline);
    // How long the reading under way has taken; zero when none is.
    double readingFor();

    // Initialises the module when it is not up and no call into it is under
    // way; its status (0: up) when initialise answers by `deadline`. A
    // module that comes up after failing, or later than that, is said to.
    std::optional<uint32_t> open(Clock::time_point deadline);
    bool opened();
    // Stopping: every scrape and records() still waiting is answered by
    // `by` at the latest (with a reading, or without), and so are those
    // that come later.
    void stop(Clock::time_point by);
    // Uninitialises the module; false when it is still in a call at
    // `deadline` (it is then left in it).
    bool close(Clock::time_point deadline);

    // For the board page, as they were when the module came up: the
    // capability document as the module built it (null while it is not
    // up); the board library the module bound, {"name", "generation",
    // "path", "board": the board's name, null when it could not be read}
    // (null: none).
    std::string document();
    std::string library();

private:
    struct Waiting {
        Clock::time_point arrived;
        Clock::time_point deadline;
        Scraped done;
    };

    // A reading, on the module's thread: every item in the text format, the
    // page's records when its sampler asked for them, and the scrapes
    // waiting for it answered.
    void read();
    std::shared_ptr<const Exposition> expose(std::vector<Reading>& readings, double start);
    vorajson::JsonPtr pageRecords(const std::vector<Reading>& readings);
    void publish(const std::shared_ptr<const Exposition>& result, const std::exception_ptr& error,
                 vorajson::JsonPtr records, double start);
    void startReading();  // under shared_
    // Initialise, on the module's thread; says when the module came up after
    // failing or after `deadline`, which the caller waited until.
    uint32_t openModule(Clock::time_point deadline);
    std::vector<Reading> readItems();
    std::string ownMetrics(bool up, double took);
    void expire();  // the thread that answers scrapes at their deadline
    // Under shared_: wakes the expiry thread when it sleeps past `when`, so
    // that a scrape or reading it need not look at costs it no wake-up.
    void expireBy(Clock::time_point when);
    // Under shared_: the scrapes whose deadline came, and the next deadline.
    std::vector<Waiting> takeDue(Clock::time_point now, Clock::time_point& next);
    // Answers them without a reading, with shared_ let go meanwhile.
    void answerLate(const std::vector<Waiting>& due, Clock::time_point now,
                    std::unique_lock<std::mutex>& lock);

    Session& session_;
    CallThread calls_;

    std::mutex shared_;  // guards what follows
    std::condition_variable changed_;  // a reading ended, or stopping
    std::condition_variable expiryWake_;  // the expiry thread's: a deadline came nearer, or ending
    // When the expiry thread looks next; min while it is looking.
    Clock::time_point expiryAt_ = Clock::time_point::min();
    bool reading_ = false;
    bool opening_ = false;
    bool opened_ = false;
    bool wantRecords_ = false;  // of the reading under way
    bool stopping_ = false;
    bool ending_ = false;  // the expiry thread's cue
    Clock::time_point stopBy_ = Clock::time_point::max();
    Clock::time_point since_{};  // when the reading under way began
    std::vector<Waiting> waiting_;  // for the reading under way
    std::shared_ptr<const Exposition> latest_;
    Clock::time_point finished_{};  // when latest_ was read
    unsigned long long readings_ = 0;  // readings ended
    vorajson::JsonPtr records_;        // of the last reading that built them
    unsigned long long recordsOf_ = 0;  // which one that was
    std::string document_ = "null";
    std::string library_ = "null";
    const Clock::time_point started_ = Clock::now();

    // Only on the module's thread: the last time initialise failed and its
    // status, and the texts the board cannot change while it runs, once read.
    double failedAt_ = 0;
    uint32_t failure_ = 0;
    std::vector<vorajson::JsonPtr> kept_;

    std::thread expiry_;
};

}  // namespace voractl
