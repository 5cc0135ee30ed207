// The simulator's control interface (vorasim.h).
#include "vorasim.h"

#include "Replay.h"
#include "Sim.h"

using vorasim::Sim;

extern "C" {

int vorasim_load_profile(const char* json_text) {
    if (json_text == nullptr) {
        return -1;
    }
    return Sim::get().loadText(json_text, "profile") ? 0 : -1;
}

int vorasim_load_profile_file(const char* path) {
    if (path == nullptr) {
        return -1;
    }
    return Sim::get().loadFile(path) ? 0 : -1;
}

const char* vorasim_last_error(void) { return Sim::get().lastError().c_str(); }

int vorasim_add_fault(const char* json_fault) {
    if (json_fault == nullptr) {
        return -1;
    }
    return Sim::get().addFault(json_fault) ? 0 : -1;
}

void vorasim_clear_faults(void) { Sim::get().clearFaults(); }

void vorasim_log_enable(int on) { Sim::get().logEnable(on != 0); }

const char* vorasim_call_log(void) { return Sim::get().logText().c_str(); }

void vorasim_clear_log(void) { Sim::get().clearLog(); }

const char* vorasim_replay(void) {
    static const std::string header = vorasim::Replay::active() != nullptr ? vorasim::Replay::active()->header() : "";
    return header.c_str();
}

}  // extern "C"
