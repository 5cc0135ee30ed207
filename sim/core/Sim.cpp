#include "Sim.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "Delay.h"
#include "Profile.h"
#include "Replay.h"
#include "Units.h"
#include "files/Read.h"
#include "record/Calls.h"
#include "record/Recording.h"

namespace vorasim {

namespace {

// The call log keeps at most this many entries, so a long run cannot grow
// it without bound; later calls are dropped.
constexpr size_t kLogLimit = 1u << 20;

double MonotonicSeconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

std::string Hex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", value);
    return text;
}

}  // namespace

Sim& Sim::get() {
    static Sim sim;
    return sim;
}

Sim::Sim() : start_(MonotonicSeconds()) {
    const char* log = std::getenv("VORA_SIM_LOG");
    logging_ = log != nullptr && std::strcmp(log, "1") == 0;
    const char* path = std::getenv("VORA_SIM_BOARD");
    const std::string board = path != nullptr ? path : "";
    std::string text;
    std::optional<std::string> kept;
    try {
        text = board.empty() ? "" : vorarec::ReadBoardFile(board);
    } catch (const vorafiles::FileError& e) {
        lastError_ = "cannot read the board profile " + board + ": " + e.what();
    }
    try {
        kept = lastError_.empty() && state_.kept() && !vorarec::IsRecording(text) ? state_.read()
                                                                                  : std::nullopt;
    } catch (const vorafiles::FileError& e) {
        lastError_ = "cannot use the board state " + state_.path() + ": " + e.what();
    }
    bool loaded = false;
    if (!lastError_.empty()) {
        // The board or its state cannot be read: said below.
    } else if (vorarec::IsRecording(text)) {
        // A recording answers for the library (Replay.h), and keeps the
        // writes it did not see in the state file itself.
        state_.forget();
        loaded = Replay::Load(text, lastError_);
        lastError_ = loaded ? "" : board + ": " + lastError_;
    } else if (kept) {
        loaded = loadText(*kept, state_.path());
    } else if (!board.empty()) {
        loaded = loadText(text, board);
    } else {
        loaded = loadText(ThisLibrary().defaultProfile, "built-in profile");
    }
    if (!loaded) {
        usable_ = false;
        std::fprintf(stderr, "vorasim: %s: %s\n", ThisLibrary().name, lastError_.c_str());
    }
}

bool Sim::loadText(const std::string& text, const std::string& origin) {
    try {
        Profile profile = ParseProfile(text);
        board_ = std::move(profile.board);
        faults_ = std::move(profile.faults);
        stateFaults_ = faults_;
        usable_ = true;
        lastError_.clear();
        return true;
    } catch (const ProfileError& e) {
        lastError_ = origin + ": " + e.what();
    } catch (const std::exception& e) {
        lastError_ = origin + ": " + e.what();
    }
    return false;
}

bool Sim::loadFile(const std::string& path) {
    try {
        return loadText(vorafiles::Read(path, vorafiles::kProfileLimit), path);
    } catch (const vorafiles::FileError& e) {
        lastError_ = "cannot read the board profile " + path + ": " + e.what();
        return false;
    }
}

bool Sim::addFault(const std::string& text) {
    try {
        faults_.push_back(ParseFault(text));
        lastError_.clear();
        return true;
    } catch (const std::exception& e) {
        lastError_ = e.what();
    }
    return false;
}

std::optional<Fault> Sim::takeFault(const char* function, std::optional<uint32_t> key) {
    for (auto it = faults_.begin(); it != faults_.end(); ++it) {
        if (it->function != function || (it->arg && (!key || *it->arg != *key))) {
            continue;
        }
        if (it->after > 0) {
            --it->after;
            continue;
        }
        Fault fault = *it;
        if (it->times && --*it->times == 0) {
            faults_.erase(it);
        }
        return fault;
    }
    return std::nullopt;
}

void Sim::log(std::string line) {
    if (logging_ && log_.size() < kLogLimit) {
        log_.push_back(std::move(line));
    }
}

const std::string& Sim::logText() {
    logText_.clear();
    for (const std::string& line : log_) {
        logText_ += line;
        logText_ += '\n';
    }
    return logText_;
}

double Sim::sensorValue(const Sensor& sensor) const {
    if (sensor.amplitude == 0.0) {
        return sensor.value;
    }
    const char* fixed = std::getenv("VORA_SIM_TIME");
    const double t = fixed != nullptr ? std::atof(fixed) : MonotonicSeconds() - start_;
    return sensor.value + sensor.amplitude * std::sin(2.0 * M_PI * t / sensor.period);
}

// The log line is only composed while the log records, so that a call costs
// the module's benchmarks no more than the board lookup it simulates.
Call::Call(const char* function) : sim_(Sim::get()) {
    if (sim_.logging()) {
        line_ = function;
    }
    begin(function, std::nullopt);
}

Call::Call(const char* function, uint32_t key) : sim_(Sim::get()) {
    if (sim_.logging()) {
        line_ = std::string(function) + " " + Hex(key);
    }
    begin(function, key);
}

void Call::begin(const char* function, std::optional<uint32_t> key) {
    fault_ = sim_.takeFault(function, key);
    if (fault_ && fault_->delays()) {
        Delay(*fault_);
    }
    if (sim_.keepsState()) {
        enter(function);
    }
}

void Sim::stateProblem(const std::string& what, const std::string& reason) const {
    std::fprintf(stderr, "vorasim: %s: %s %s: %s\n", ThisLibrary().name, what.c_str(),
                 state_.path().c_str(), reason.c_str());
}

bool Sim::enterCall(bool writes, std::optional<vorafiles::Lock>& lock) {
    try {
        if (writes) {
            state_.lock(lock);
        }
        if (state_.changed()) {
            if (const std::optional<std::string> text = state_.read()) {
                board_ = ParseProfile(*text).board;  // this process's faults stay as they are
            }
        }
        return true;
    } catch (const std::exception& e) {
        stateProblem(writes ? "cannot change the board kept in" : "cannot read the board kept in",
                     e.what());
        return !writes;
    }
}

bool Sim::saveState() {
    try {
        state_.write(FormatProfile(board_, stateFaults_));
        return true;
    } catch (const vorafiles::FileError& e) {
        stateProblem("cannot save the board state", e.what());
        return false;
    }
}

void Call::enter(const char* function) {
    const bool writes = vorarec::Writes(function);
    usable_ = sim_.enterCall(writes, lock_);
    if (writes) {
        before_ = sim_.board();
    }
}

void Call::changed() {
    if (!sim_.keepsState()) {
        return;
    }
    if (!before_) {
        sim_.saveState();
    } else if (!usable_ || !sim_.saveState()) {
        sim_.board() = *before_;
        lost_ = true;
    }
}

uint32_t Call::LostStatus() {
    return std::strcmp(ThisLibrary().generation, "3") == 0 ? kV3Failed : kError;
}

Call::~Call() {
    if (sim_.logging()) {
        sim_.log(std::move(line_));
    }
}

Call& Call::note(const char* name, uint32_t value) {
    if (sim_.logging()) {
        line_ += std::string(" ") + name + "=" + Hex(value);
    }
    return *this;
}

Call& Call::noteText(const char* name, const std::string& text) {
    if (sim_.logging()) {
        line_ += std::string(" ") + name + "=" + text;
    }
    return *this;
}

uint32_t Call::text(const std::string& text, char* buffer, unsigned int* length, uint32_t ok,
                    uint32_t more, bool countTerminator) const {
    if (length == nullptr) {
        return result(more);
    }
    const unsigned int size = *length;
    uint32_t status = ok;
    if (fault_ && fault_->unterminated && buffer != nullptr && size > 0) {
        // Every byte of the buffer holds text; none is a terminator.
        for (unsigned int i = 0; i < size; ++i) {
            buffer[i] = text.empty() ? 'X' : text[i % text.size()];
        }
        *length = size;
    } else if (buffer == nullptr || text.size() + 1 > size) {
        if (buffer != nullptr && size > 0) {
            std::memcpy(buffer, text.data(), size - 1);
            buffer[size - 1] = '\0';
        }
        *length = static_cast<unsigned int>(text.size() + 1);
        status = more;
    } else {
        std::memcpy(buffer, text.c_str(), text.size() + 1);
        *length = static_cast<unsigned int>(text.size() + (countTerminator ? 1 : 0));
    }
    if (fault_ && fault_->length) {
        *length = *fault_->length;
    }
    return result(status);
}

}  // namespace vorasim
