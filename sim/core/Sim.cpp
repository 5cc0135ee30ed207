#include "Sim.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>

#include "Profile.h"
#include "Replay.h"

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

namespace {

bool IsRecordingFile(const char* path) {
    std::ifstream in(path);
    char start[256] = {};
    in.read(start, sizeof start - 1);
    return vorarec::IsRecording(start);
}

}  // namespace

Sim& Sim::get() {
    static Sim sim;
    return sim;
}

Sim::Sim() : start_(MonotonicSeconds()) {
    const char* log = std::getenv("VORA_SIM_LOG");
    logging_ = log != nullptr && std::strcmp(log, "1") == 0;
    const char* state = std::getenv("VORA_SIM_STATE");
    const char* path = std::getenv("VORA_SIM_BOARD");
    bool loaded;
    if (path != nullptr && *path != '\0' && IsRecordingFile(path)) {
        // A recording answers for the library (Replay.h); the board stays
        // empty and is not kept.
        loaded = Replay::Load(path, lastError_);
        lastError_ = loaded ? "" : std::string(path) + ": " + lastError_;
        state = nullptr;
    } else if (state != nullptr && *state != '\0' && std::ifstream(state).good()) {
        loaded = loadFile(state);
    } else if (path != nullptr && *path != '\0') {
        loaded = loadFile(path);
    } else {
        loaded = loadText(ThisLibrary().defaultProfile, "built-in profile");
    }
    if (state != nullptr) {
        statePath_ = state;
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
    std::ifstream in(path);
    if (!in) {
        lastError_ = path + ": cannot read the board profile";
        return false;
    }
    std::ostringstream text;
    text << in.rdbuf();
    return loadText(text.str(), path);
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
    fault_ = sim_.takeFault(function, std::nullopt);
}

Call::Call(const char* function, uint32_t key) : sim_(Sim::get()) {
    if (sim_.logging()) {
        line_ = std::string(function) + " " + Hex(key);
    }
    fault_ = sim_.takeFault(function, key);
}

void Sim::saveState() {
    if (statePath_.empty()) {
        return;
    }
    // Written aside and renamed, so a reader never sees half a board.
    const std::string temporary = statePath_ + ".tmp";
    {
        std::ofstream out(temporary, std::ios::trunc);
        out << FormatProfile(board_);
        if (!out) {
            std::fprintf(stderr, "vorasim: %s: cannot write the board state %s\n",
                         ThisLibrary().name, statePath_.c_str());
            return;
        }
    }
    std::rename(temporary.c_str(), statePath_.c_str());
}

Call::~Call() {
    if (changed_) {
        sim_.saveState();
    }
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
