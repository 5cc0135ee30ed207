// The exporter's scrapes: every readable item in the Prometheus text format,
// read from the module on demand, one reading at a time.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "Exposition.h"
#include "Truth.h"

namespace voractl {

class Session;

class Exporter {
public:
    explicit Exporter(Session& session) : session_(session) {}

    // The metrics of a fresh reading of the board for a scrape that
    // arrived at `arrived`. Only one thread reads the module at a time; a
    // scrape that arrives while a reading is under way shares its result
    // (waiting for it, or taking it when it is done), so a burst of scrapes
    // costs the board one reading, and each form of it is built once.
    std::shared_ptr<const Exposition> scrape(std::chrono::steady_clock::time_point arrived);

    // Initialises the module when it is not up; its status (0: up). Called
    // by the retry loop; waits for a reading under way.
    uint32_t tryOpen();
    bool opened();
    // Uninitialises the module once no reading is under way.
    void close();

    // For the board page, each under the same lock as the scrapes: every
    // item's record as "voractl list --json" gives it (an empty array while
    // the module is not up); the capability document as the module built
    // it (null while it is not up); the board library the module bound,
    // {"name", "generation", "path"} (null: none).
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
    std::shared_ptr<const Exposition> latest_;
    std::chrono::steady_clock::time_point finished_;  // when latest_ was read
};

}  // namespace voractl
