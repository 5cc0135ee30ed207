#include "Session.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "BoardLibraries.h"
#include "Format.h"
#include "Reading.h"
#include "Simulation.h"
#include "ToolError.h"
#include "json/JsonPtr.h"

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

// What to do when the module does not come up with `status`.
std::string Advice(uint32_t status) {
    if (const std::string state = SimulatedBoardState(); !state.empty() && access(state.c_str(), F_OK) == 0) {
        return "the simulated board could not be set up from its state " + state +
               " (the simulator says why above); --sim-reset starts it again from its profile";
    }
    if (status == VORADRV_STATUS_UNSUPPORTED && !voradrv::host::LoadedBoardLibrary()) {
        const auto& [vora4, vora3, eapi] = voradrv::host::kBoardLibraries;
        return std::string("no board library: the module looks for ") + vora4.probed[0] + ", " +
               vora4.probed[1] + ", " + vora3.probed[0] + " and " + eapi.probed[0] + " (and " +
               vora3.probed[1] + " again in place of the last two), and none is there; --sim "
               "runs against the simulated board";
    }
    return "cannot initialise the module: " + StatusText(status);
}

// "1.5 s".
std::string Seconds(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%g s", seconds);
    return text;
}

}  // namespace

Session::Session(const std::string& modulePath, bool quiet, bool raw)
    : module_(modulePath.empty() ? DefaultModulePath() : modulePath), output_(quiet), raw_(raw) {}

Session::~Session() { close(); }

uint32_t Session::tryOpen() {
    uint32_t status;
    {
        ModuleOutput::Catch caught(output_);
        status = module_.initialize();
    }
    if (status != VORADRV_STATUS_SUCCESS) {
        return status;
    }
    library_ = voradrv::host::LoadedBoardLibrary();
    truth_ = Truth(library_ ? library_->generation : "", raw_);
    document_ = Own(json_object());
    {
        ModuleOutput::Catch caught(output_);
        status = module_.capability(document_.get());
    }
    if (status != VORADRV_STATUS_SUCCESS) {
        close();
        return status;
    }
    items_ = CollectItems(document_.get());
    return VORADRV_STATUS_SUCCESS;
}

void Session::open() {
    uint32_t status = VORADRV_STATUS_ERROR;
    if (timeout_ > 0) {
        calls_ = std::make_unique<CallThread>();
        if (!calls_->await([this, &status] { status = tryOpen(); }, After(timeout_))) {
            abandon();
            throw ToolError("the module's initialise did not answer in " + Seconds(timeout_) +
                            " (--timeout); it is left in the board library's call");
        }
    } else {
        status = tryOpen();
    }
    if (status != VORADRV_STATUS_SUCCESS) {
        throw ToolError(opened() ? "cannot read the capability document: " + StatusText(status)
                                 : Advice(status));
    }
}

void Session::close() {
    if (module_.initialized() && !abandoned_) {
        ModuleOutput::Catch caught(output_);
        module_.uninitialize();
    }
    document_.reset();
    items_.clear();
}

Reading Session::read(const Item& item) {
    Reading reading;
    reading.item = &item;
    reading.bare = truth_.raw();
    reading.libraryUnit = truth_.libraryUnit(item);
    JsonPtr value = Own(EmptyValue(item.type));
    {
        ModuleOutput::Catch caught(output_);
        reading.status = module_.get(item.id, value.get());
    }
    if (reading.status == VORADRV_STATUS_SUCCESS) {
        reading.alarm = truth_.alarm(item, value.get());
        reading.value = truth_.shown(item, value.get());
        if (truth_.converts(item)) {
            reading.raw = std::move(value);
        }
    }
    return reading;
}

std::vector<Reading> Session::readAll(const std::vector<Item>& items) {
    return calls_ != nullptr ? readWithin(items) : readEach(items);
}

void Session::abandon() {
    abandoned_ = true;
    output_.abandon();
}

// A reading on the module's thread that the caller may stop waiting for.
// The thread reads a copy of the items, which the caller may drop while a
// call it gave up on is still under way; what it read is kept until the
// caller stops waiting, and nothing after that.
struct Session::Progress {
    std::mutex mutex;
    std::vector<Item> items;
    std::vector<Reading> readings;
    bool late = false;

    // The next item to read, or null once done or late.
    const Item* next() {
        std::lock_guard<std::mutex> lock(mutex);
        return late || readings.size() == items.size() ? nullptr : &items[readings.size()];
    }
    void keep(Reading reading) {
        std::lock_guard<std::mutex> lock(mutex);
        if (!late) {
            readings.push_back(std::move(reading));
        }
    }
};

std::vector<Reading> Session::readWithin(const std::vector<Item>& items) {
    auto progress = std::make_shared<Progress>();
    progress->items = items;
    if (!abandoned_) {
        calls_->await([this, progress] {
            ModuleOutput::Catch caught(output_);
            while (const Item* item = progress->next()) {
                progress->keep(read(*item));
            }
        }, After(timeout_));
    }
    std::lock_guard<std::mutex> lock(progress->mutex);
    progress->late = true;
    std::vector<Reading> readings = std::move(progress->readings);
    if (readings.size() < items.size()) {
        abandon();
    }
    for (size_t i = 0; i < items.size(); ++i) {
        if (i == readings.size()) {
            readings.emplace_back();
            readings.back().unanswered = true;
            readings.back().bare = truth_.raw();
        }
        readings[i].item = &items[i];
    }
    return readings;
}

std::vector<Reading> Session::readEach(const std::vector<Item>& items) {
    ModuleOutput::Catch caught(output_);  // one catch for the lot
    std::vector<Reading> readings;
    readings.reserve(items.size());
    for (const Item& item : items) {
        readings.push_back(read(item));
    }
    return readings;
}

uint32_t Session::write(const Item& item, json_t* value) {
    ModuleOutput::Catch caught(output_);
    return module_.set(item.id, value);
}

}  // namespace voractl
