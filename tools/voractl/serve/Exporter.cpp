#include "Exporter.h"

#include <time.h>

#include <algorithm>
#include <cstdio>

#include "Format.h"
#include "Prometheus.h"
#include "Reading.h"
#include "Session.h"
#include "json/JsonPtr.h"

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

double Seconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

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

}  // namespace

std::string Exporter::read() {
    const double start = Seconds();
    std::string text;
    bool up = false;
    std::string failure;
    {
        std::lock_guard<std::mutex> lock(module_);
        std::vector<Reading> readings;  // none while the module is not up
        if (session_.opened()) {
            readings = session_.readAll(session_.items());
            // Up: the board library answered every item of this scrape. A
            // library that starts failing is down, with the items it still
            // answers published and the others counted as unreadable.
            up = std::all_of(readings.begin(), readings.end(),
                             [](const Reading& reading) { return reading.value != nullptr; });
        }
        text = PrometheusText(readings);
        if (failedAt_ > 0) {
            failure = Gauge("voradrv_last_initialize_error_timestamp_seconds",
                            "When initialising the module last failed, and the status it gave.",
                            "{error=\"" + StatusText(failure_) + "\"}", Fixed(failedAt_, 3));
        }
    }
    return text + failure +
           Gauge("voradrv_up", "1 when the module is up and its board library answered every item.",
                 "", up ? "1" : "0") +
           Gauge("voradrv_scrape_duration_seconds", "Time this scrape took to read the board.", "",
                 Fixed(Seconds() - start, 6));
}

void Exporter::scrape(std::chrono::steady_clock::time_point arrived, Scraped done) {
    std::unique_lock<std::mutex> lock(shared_);
    // A reading that ended after the scrape arrived was under way then (or
    // began since): it is as fresh as the scrape asks.
    if (latest_ != nullptr && finished_ >= arrived) {
        const std::shared_ptr<const Exposition> latest = latest_;
        lock.unlock();
        done(latest, nullptr);
        return;
    }
    if (reading_) {
        waiting_.push_back(std::move(done));
        return;
    }
    reading_ = true;
    lock.unlock();
    std::shared_ptr<const Exposition> result;
    std::exception_ptr error;
    try {
        result = std::make_shared<const Exposition>(read());
    } catch (...) {
        error = std::current_exception();
    }
    lock.lock();
    if (result != nullptr) {
        latest_ = result;
        finished_ = std::chrono::steady_clock::now();
    }
    reading_ = false;
    std::vector<Scraped> waiting;
    waiting.swap(waiting_);
    lock.unlock();
    for (const Scraped& shared : waiting) {
        try {
            shared(result, error);
        } catch (...) {
            // Each answers for itself; the others are still answered.
        }
    }
    done(result, error);
}

uint32_t Exporter::tryOpen() {
    std::lock_guard<std::mutex> lock(module_);
    if (session_.opened()) {
        return 0;
    }
    const uint32_t status = session_.tryOpen();
    if (status != 0) {
        failedAt_ = UnixTime();
        failure_ = status;
    }
    return status;
}

bool Exporter::opened() {
    std::lock_guard<std::mutex> lock(module_);
    return session_.opened();
}

void Exporter::close() {
    std::lock_guard<std::mutex> lock(module_);
    session_.close();
}

JsonPtr Exporter::records() {
    std::lock_guard<std::mutex> lock(module_);
    if (!session_.opened()) {
        return Own(json_array());
    }
    // The page shows values, limits and units in voractl's words, from here.
    return Own(ShownRecordsJson(session_.readAll(session_.items())));
}

std::string Exporter::document() {
    std::lock_guard<std::mutex> lock(module_);
    return session_.opened() ? JsonText(session_.document()) : "null";
}

std::string Exporter::library() {
    std::lock_guard<std::mutex> lock(module_);
    const auto& library = session_.library();
    if (!library) {
        return "null";
    }
    // The board's name, for the page's title: null when none can be read.
    const Item* board = BoardNameItem(session_.items());
    const Reading name = board != nullptr ? session_.read(*board) : Reading{};
    JsonPtr json = Own(json_pack("{s:s, s:s, s:s, s:O}", "name", library->name.c_str(), "generation",
                                 voradrv::host::GenerationText(library->generation).c_str(), "path",
                                 library->path.c_str(), "board",
                                 name.value ? name.value.get() : json_null()));
    return JsonText(json.get());
}

}  // namespace voractl
