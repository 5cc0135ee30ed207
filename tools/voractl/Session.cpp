#include "Session.h"

#include <unistd.h>

#include <cstdlib>

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
    const uint32_t status = tryOpen();
    if (status != VORADRV_STATUS_SUCCESS) {
        throw ToolError(opened() ? "cannot read the capability document: " + StatusText(status)
                                 : Advice(status));
    }
}

void Session::close() {
    if (module_.initialized()) {
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
