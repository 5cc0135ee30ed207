#include "Exporter.h"

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "Format.h"
#include "Prometheus.h"
#include "Session.h"
#include "ToolError.h"

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

double Seconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double SecondsOf(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

std::string Fixed(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

// The exporter's own metric: a gauge family of one sample.
std::string Gauge(const char* name, const char* help, const std::string& labels,
                  const std::string& value) {
    return std::string("# HELP ") + name + " " + help + "\n# TYPE " + name + " gauge\n" + name +
           labels + " " + value + "\n";
}

// How long ago the last complete reading ended (since the exporter started,
// before the first).
std::string AgeGauge(double seconds) {
    return Gauge("voradrv_last_reading_age_seconds",
                 "Seconds since the last complete reading of the board ended (0: this one).", "",
                 Fixed(seconds, 3));
}

// A text the board cannot change while it runs: the platform information's
// texts (its name, revisions, serial number, versions...), read once for
// each time the module comes up. The customer strings (board strings from
// position 16 on) are a site's to rewrite, so they are read every time, as
// every number is.
bool Unchanging(const Item& item) {
    const uint32_t kFirstCustomerString = 0x1010411;
    const uint32_t kLastBoardString = 0x10104FF;
    return item.in(Block::Platform) && item.type == JSON_STRING &&
           !(item.id >= kFirstCustomerString && item.id <= kLastBoardString);
}

// A reading with the value kept of an earlier one.
Reading Kept(const Item& item, const JsonPtr& value, bool bare) {
    Reading reading;
    reading.item = &item;
    reading.value = Own(json_incref(value.get()));
    reading.bare = bare;
    return reading;
}

// A scrape with the reading under way for longer than this is logged.
constexpr double kLogAfterSeconds = 10;

}  // namespace

Exporter::Exporter(Session& session) : session_(session), expiry_([this] { expire(); }) {}

Exporter::~Exporter() {
    stop(Clock::now());
    {
        std::lock_guard<std::mutex> lock(shared_);
        ending_ = true;
        expiryWake_.notify_all();
    }
    expiry_.join();
}

std::vector<Reading> Exporter::readItems() {
    const std::vector<Item>& items = session_.items();
    kept_.resize(items.size());
    std::vector<Reading> readings;
    readings.reserve(items.size());
    std::vector<Item> fresh;
    std::vector<size_t> at;  // of each fresh item among all
    for (size_t i = 0; i < items.size(); ++i) {
        if (kept_[i] == nullptr) {
            fresh.push_back(items[i]);
            at.push_back(i);
        }
    }
    std::vector<Reading> read = session_.readAll(fresh);
    size_t next = 0;
    for (size_t i = 0; i < items.size(); ++i) {
        if (next < at.size() && at[next] == i) {
            Reading& reading = read[next++];
            reading.item = &items[i];
            if (reading.value != nullptr && Unchanging(items[i])) {
                kept_[i] = Own(json_incref(reading.value.get()));
            }
            readings.push_back(std::move(reading));
        } else {
            readings.push_back(Kept(items[i], kept_[i], session_.truth().raw()));
        }
    }
    return readings;
}

std::string Exporter::ownMetrics(bool up, double took) {
    std::string failure;
    if (failedAt_ > 0) {
        failure = Gauge("voradrv_last_initialize_error_timestamp_seconds",
                        "When initialising the module last failed, and the status it gave.",
                        "{error=\"" + StatusText(failure_) + "\"}", Fixed(failedAt_, 3));
    }
    return failure +
           Gauge("voradrv_up", "1 when the module is up and its board library answered every item.",
                 "", up ? "1" : "0") +
           Gauge("voradrv_scrape_duration_seconds", "Time this scrape took to read the board.", "",
                 Fixed(took, 6));
}

void Exporter::read() {
    const double start = Seconds();
    std::vector<Reading> readings;  // none while the module is not up
    std::shared_ptr<const Exposition> result;
    std::exception_ptr error;
    try {
        result = expose(readings, start);
    } catch (...) {
        error = std::current_exception();
    }
    publish(result, error, pageRecords(readings), start);
}

std::shared_ptr<const Exposition> Exporter::expose(std::vector<Reading>& readings, double start) {
    bool up = false;
    if (session_.opened()) {
        readings = readItems();
        // Up: the board library answered every item of this reading. A
        // library that starts failing is down, with the items it still
        // answers published and the others counted as unreadable.
        up = std::all_of(readings.begin(), readings.end(),
                         [](const Reading& reading) { return reading.value != nullptr; });
    }
    std::string own;
    {
        std::lock_guard<std::mutex> lock(shared_);
        own = ownMetrics(up, Seconds() - start);
    }
    return std::make_shared<const Exposition>(PrometheusText(readings) + AgeGauge(0) + own);
}

JsonPtr Exporter::pageRecords(const std::vector<Reading>& readings) {
    // When the page's sampler asked before this reading ended; one that
    // asks later has the next reading.
    {
        std::lock_guard<std::mutex> lock(shared_);
        if (!std::exchange(wantRecords_, false)) {
            return nullptr;
        }
    }
    try {
        return Own(ShownRecordsJson(readings));
    } catch (...) {
        ReportFailure("cannot sample the board", std::current_exception());
        return nullptr;
    }
}

void Exporter::publish(const std::shared_ptr<const Exposition>& result, const std::exception_ptr& error,
                       JsonPtr records, double start) {
    std::vector<Waiting> waiting;
    {
        std::lock_guard<std::mutex> lock(shared_);
        if (result != nullptr) {
            latest_ = result;
        }
        finished_ = Clock::now();
        reading_ = false;
        ++readings_;
        if (records != nullptr) {
            records_ = std::move(records);
            recordsOf_ = readings_;
        }
        waiting.swap(waiting_);
        changed_.notify_all();
    }
    const double took = Seconds() - start;
    if (took >= kLogAfterSeconds) {
        std::fprintf(stderr, "voractl: the board answered a reading after %.1f s\n", took);
    }
    for (const Waiting& shared : waiting) {
        try {
            shared.done(result, error);
        } catch (...) {
            // Each answers for itself; the others are still answered.
        }
    }
}

void Exporter::startReading() {
    reading_ = true;
    since_ = Clock::now();
    expireBy(since_ + std::chrono::seconds(static_cast<int>(kLogAfterSeconds)));
    calls_.post([this] { read(); });
}

void Exporter::expireBy(Clock::time_point when) {
    if (when < expiryAt_) {
        expiryWake_.notify_all();
    }
}

void Exporter::scrape(Clock::time_point arrived, Clock::time_point deadline, Scraped done) {
    std::unique_lock<std::mutex> lock(shared_);
    // A reading that ended after the scrape arrived was under way then (or
    // began since): it is as fresh as the scrape asks.
    if (latest_ != nullptr && finished_ >= arrived) {
        const std::shared_ptr<const Exposition> latest = latest_;
        lock.unlock();
        done(latest, nullptr);
        return;
    }
    waiting_.push_back({arrived, std::min(deadline, stopBy_), std::move(done)});
    expireBy(waiting_.back().deadline);
    if (!reading_ && !stopping_) {
        startReading();
    }
}

// Answers the scrapes whose deadline came before a reading did, with the
// exporter's own metrics and how old the last complete reading is; logs a
// reading that takes long, once. Ends when the exporter is destroyed.
void Exporter::expire() {
    std::unique_lock<std::mutex> lock(shared_);
    // The reading logged as long, by the count of readings ended before it:
    // this thread is not woken when a reading ends, so a flag would carry
    // over to the next one.
    unsigned long long logged = ~0ULL;
    for (;;) {
        const Clock::time_point now = Clock::now();
        Clock::time_point next = Clock::time_point::max();
        std::vector<Waiting> due = takeDue(now, next);
        const double underWay = reading_ ? SecondsOf(now - since_) : 0;
        const bool told = reading_ && logged == readings_;
        if (underWay >= kLogAfterSeconds && !told) {
            logged = readings_;
            std::fprintf(stderr, "voractl: the board has not answered a reading for %.0f s; scrapes "
                                 "are answered with voradrv_up 0 until it does\n", underWay);
        } else if (reading_ && !told) {
            next = std::min(next, since_ + std::chrono::seconds(static_cast<int>(kLogAfterSeconds)));
        }
        if (!due.empty()) {
            answerLate(due, now, lock);
            continue;
        }
        if (ending_) {
            return;
        }
        expiryAt_ = next;
        expiryWake_.wait_until(lock, next);
        expiryAt_ = Clock::time_point::min();
    }
}

std::vector<Exporter::Waiting> Exporter::takeDue(Clock::time_point now, Clock::time_point& next) {
    std::vector<Waiting> due;
    for (auto it = waiting_.begin(); it != waiting_.end();) {
        if (it->deadline <= now) {
            due.push_back(std::move(*it));
            it = waiting_.erase(it);
        } else {
            next = std::min(next, it->deadline);
            ++it;
        }
    }
    return due;
}

void Exporter::answerLate(const std::vector<Waiting>& due, Clock::time_point now,
                          std::unique_lock<std::mutex>& lock) {
    std::vector<std::string> own;
    for (const Waiting& late : due) {
        own.push_back(ownMetrics(false, SecondsOf(now - late.arrived)));
    }
    const std::string age = AgeGauge(SecondsOf(now - (readings_ > 0 ? finished_ : started_)));
    lock.unlock();
    for (size_t i = 0; i < due.size(); ++i) {
        try {
            due[i].done(std::make_shared<const Exposition>(PrometheusText({}) + age + own[i]), nullptr);
        } catch (...) {
            // Each answers for itself.
        }
    }
    lock.lock();
}

JsonPtr Exporter::records(Clock::time_point deadline) {
    std::unique_lock<std::mutex> lock(shared_);
    const unsigned long long asked = readings_;
    wantRecords_ = true;
    for (;;) {
        if (recordsOf_ > asked && records_ != nullptr) {
            return Own(json_incref(records_.get()));
        }
        if (stopping_ || Clock::now() >= std::min(deadline, stopBy_)) {
            return nullptr;
        }
        if (!reading_) {
            wantRecords_ = true;
            startReading();
        }
        changed_.wait_until(lock, std::min(deadline, stopBy_));
    }
}

double Exporter::readingFor() {
    std::lock_guard<std::mutex> lock(shared_);
    return reading_ ? SecondsOf(Clock::now() - since_) : 0;
}

std::optional<uint32_t> Exporter::open(Clock::time_point deadline) {
    {
        std::lock_guard<std::mutex> lock(shared_);
        if (opened_) {
            return 0;
        }
        if (opening_ || stopping_) {
            return std::nullopt;
        }
        opening_ = true;
    }
    auto status = std::make_shared<uint32_t>(VORADRV_STATUS_ERROR);
    if (!calls_.await([this, status, deadline] { *status = openModule(deadline); }, deadline)) {
        return std::nullopt;
    }
    return *status;
}

uint32_t Exporter::openModule(Clock::time_point deadline) {
    const uint32_t status = session_.tryOpen();
    std::string document = "null";
    std::string library = "null";
    const auto& bound = session_.library();
    if (status == 0 && bound) {
        document = JsonText(session_.document());
        // The board's name, for the page's title: null when none can be read.
        const Item* board = BoardNameItem(session_.items());
        const Reading name = board != nullptr ? session_.read(*board) : Reading{};
        JsonPtr json = Own(json_pack("{s:s, s:s, s:s, s:O}", "name", bound->name.c_str(), "generation",
                                     voradrv::host::GenerationText(bound->generation).c_str(), "path",
                                     bound->path.c_str(), "board",
                                     name.value ? name.value.get() : json_null()));
        library = JsonText(json.get());
    }
    std::lock_guard<std::mutex> lock(shared_);
    opening_ = false;
    opened_ = status == 0;
    document_ = std::move(document);
    library_ = std::move(library);
    kept_.clear();
    if (status != 0) {
        failedAt_ = UnixTime();
        failure_ = status;
    } else if (failedAt_ > 0 || Clock::now() > deadline) {
        std::fprintf(stderr, "voractl: the module came up\n");
    }
    return status;
}

bool Exporter::opened() {
    std::lock_guard<std::mutex> lock(shared_);
    return opened_;
}

void Exporter::stop(Clock::time_point by) {
    std::lock_guard<std::mutex> lock(shared_);
    stopping_ = true;
    stopBy_ = std::min(stopBy_, by);
    for (Waiting& waiting : waiting_) {
        waiting.deadline = std::min(waiting.deadline, by);
    }
    changed_.notify_all();
    expireBy(by);
}

bool Exporter::close(Clock::time_point deadline) {
    return calls_.await([this] {
        session_.close();
        std::lock_guard<std::mutex> lock(shared_);
        opened_ = false;
    }, deadline);
}

std::string Exporter::document() {
    std::lock_guard<std::mutex> lock(shared_);
    return document_;
}

std::string Exporter::library() {
    std::lock_guard<std::mutex> lock(shared_);
    return library_;
}

}  // namespace voractl
