// The exporter's scrapes: every readable item in the Prometheus text format,
// read from the module on demand, one reading at a time.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "Truth.h"

namespace voractl {

class Session;

class Exporter {
public:
    explicit Exporter(Session& session) : session_(session) {}

    // The metrics of a fresh reading of the board. Only one thread reads
    // the module at a time; a scrape that arrives while a reading is under
    // way waits for it and shares its result, so a burst of scrapes costs
    // the board one reading.
    std::shared_ptr<const std::string> scrape();

    // Initialises the module when it is not up; its status (0: up). Called
    // by the retry loop; waits for a reading under way.
    uint32_t tryOpen();
    bool opened();
    // Uninitialises the module once no reading is under way.
    void close();

    // For the board page, each under the same lock as the scrapes: every
    // item's record as "voractl list --json" gives it, with "text" (the
    // value as voractl shows it) and "limits" (as voractl list shows them),
    // an empty array while the module is not up; the capability document as
    // the module built it (null while it is not up); the board library the
    // module bound, {"name", "generation", "path"} (null: none).
    JsonPtr records();
    std::string document();
    std::string library();

private:
    std::string read();

    Session& session_;
    std::mutex module_;  // held by whoever calls into the module

    std::mutex shared_;  // guards what follows
    std::condition_variable done_;
    bool reading_ = false;
    uint64_t readings_ = 0;  // readings finished
    std::shared_ptr<const std::string> latest_;

    // The last time initialise failed, and its status (under module_).
    double failedAt_ = 0;
    uint32_t failure_ = 0;
};

// The text format as OpenMetrics 1.0 writes it: a counter's family named
// without its "_total", and "# EOF" at the end.
std::string OpenMetricsText(const std::string& text);

}  // namespace voractl
