// The exporter's scrapes: every readable item in the Prometheus text format,
// read from the module on demand, one reading at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Exposition.h"
#include "json/JsonPtr.h"

namespace voractl {

class Session;

class Exporter {
public:
    explicit Exporter(Session& session) : session_(session) {}

    // The metrics of a fresh reading of the board, or why it failed.
    using Scraped = std::function<void(std::shared_ptr<const Exposition>, std::exception_ptr)>;

    // Calls `done` with the metrics of a fresh reading for a scrape that
    // arrived at `arrived`. Only one thread reads the module at a time: a
    // scrape that arrives while a reading is under way shares it, and its
    // `done` is called by the reading thread when the reading is over (no
    // thread waits); one that comes when no reading is under way reads on
    // the caller's thread. A burst of scrapes costs the board one reading,
    // and each form of it is built once.
    void scrape(std::chrono::steady_clock::time_point arrived, Scraped done);

    // Initialises the module when it is not up; its status (0: up). Called
    // by the retry loop; waits for a reading under way.
    uint32_t tryOpen();
    bool opened();
    // Uninitialises the module once no reading is under way.
    void close();

    // For the board page, each under the same lock as the scrapes: every
    // item's record as "voractl list --json" gives it, with what the page
    // needs to show it as voractl does (ShownRecordsJson in Reading.h), an
    // empty array while the module is not up; the capability document as
    // the module built it (null while it is not up); the board library the
    // module bound, {"name", "generation", "path"} (null: none).
    vorajson::JsonPtr records();
    std::string document();
    std::string library();

private:
    std::string read();

    Session& session_;
    std::mutex module_;  // held by whoever calls into the module

    std::mutex shared_;  // guards what follows
    bool reading_ = false;
    std::vector<Scraped> waiting_;  // for the reading under way
    std::shared_ptr<const Exposition> latest_;
    std::chrono::steady_clock::time_point finished_;  // when latest_ was read

    // The last time initialise failed, and its status (under module_).
    double failedAt_ = 0;
    uint32_t failure_ = 0;
};

}  // namespace voractl
