// State of one simulated board library: its board, faults and call log, and
// the Call helper through which every library function runs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Board.h"
#include "State.h"
#include "files/Lock.h"

namespace vorasim {

// Identity of the simulated library the core is linked into; each library
// defines it.
struct LibraryInfo {
    const char* name;            // "libVORA-4.00"
    const char* generation;      // "4", "3" or "eapi"
    const char* defaultProfile;  // built-in board profile (JSON text)
};
const LibraryInfo& ThisLibrary();

class Sim {
public:
    // The library's state. The first use reads the profile named by
    // VORA_SIM_BOARD, or the built-in one.
    static Sim& get();

    Board& board() { return board_; }
    // False when the profile given at start-up could not be used; the
    // library's initialise then fails.
    bool usable() const { return usable_; }

    // Replaces board and faults; on error keeps them and returns false.
    bool loadText(const std::string& text, const std::string& origin);
    bool loadFile(const std::string& path);
    bool addFault(const std::string& text);
    void clearFaults() { faults_.clear(); }

    // The fault for this call, if any; a fault limited to a number of calls
    // is used up here.
    std::optional<Fault> takeFault(const char* function, std::optional<uint32_t> key);

    void logEnable(bool on) { logging_ = on; }
    bool logging() const { return logging_; }
    void log(std::string line);
    const std::string& logText();
    void clearLog() { log_.clear(); }

    const std::string& lastError() const { return lastError_; }

    // With VORA_SIM_STATE naming a file (State.h), the board is kept there
    // with the profile's faults: read from it at start-up when it exists
    // (instead of the profile), read again by any call once another process
    // changed it, and saved by every change, under the file's lock.
    bool keepsState() const { return state_.kept(); }
    // Starts a call: a call that changes the board (`writes`) takes the lock
    // into `lock` first; then the board is brought up to date with the file.
    // Returns false when a change cannot be made (the lock or the file
    // cannot be had), having said why.
    bool enterCall(bool writes, std::optional<vorafiles::Lock>& lock);
    // Saves the board; false, having said why, when it cannot.
    bool saveState();

    // A sensor's value now, with its wave when it has one. The clock is
    // seconds since start-up, or VORA_SIM_TIME when that is set.
    double sensorValue(const Sensor& sensor) const;

private:
    Sim();

    void stateProblem(const std::string& what, const std::string& reason) const;

    Board board_;
    std::vector<Fault> faults_;
    std::vector<Fault> stateFaults_;  // the faults the board came with, kept with it
    bool usable_ = true;
    bool logging_ = false;
    std::vector<std::string> log_;
    std::string logText_;
    std::string lastError_;
    double start_ = 0.0;
    StateFile state_;
};

// One call of a library function: recorded in the call log when it ends, and
// matched against the faults when it starts. A fault that makes the call
// slow, or never return, is served first, before the call takes the kept
// board's lock, so that it holds up no other process.
class Call {
public:
    explicit Call(const char* function);
    Call(const char* function, uint32_t key);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    // Adds "name=0x..." to the call's log line.
    Call& note(const char* name, uint32_t value);
    // Adds "name=text" to the call's log line.
    Call& noteText(const char* name, const std::string& text);

    Board& board() { return sim_.board(); }
    Sim& sim() { return sim_; }
    // Marks the board as changed by this call and saves it in the state
    // file; a board that cannot be saved is put back as it was, and the
    // call fails.
    void changed();
    const std::optional<Fault>& fault() const { return fault_; }

    // True when a fault makes the call return status() at once, untouched.
    bool failsNow() const { return fault_ && fault_->statusOnly(); }
    uint32_t status() const { return *fault_->status; }

    // The call's result: the fault's status when it has one, else `normal`;
    // the library's failure when the change could not be kept.
    uint32_t result(uint32_t normal) const {
        return lost_ ? LostStatus() : fault_ && fault_->status ? *fault_->status : normal;
    }

    // Writes `normal` to an output, or the fault's value; null is skipped.
    template <typename T>
    void out(T* output, T normal) const {
        if (output != nullptr) {
            *output = fault_ && fault_->value ? static_cast<T>(*fault_->value) : normal;
        }
    }

    // Copies a text into a caller's buffer of `*length` bytes. Success sets
    // `*length` to the text's length (with the terminator when
    // `countTerminator`) and returns `ok`. A buffer too small (or null) gets
    // the text cut to fit, `*length` the size needed, and `more`. Faults may
    // leave the text unterminated or report another length.
    uint32_t text(const std::string& text, char* buffer, unsigned int* length, uint32_t ok,
                  uint32_t more, bool countTerminator = false) const;

private:
    static uint32_t LostStatus();
    // The fault for this call, if any, and the time it makes the call take.
    void begin(const char* function, std::optional<uint32_t> key);
    // With a kept board: the lock for a change, and the board brought up to
    // date with the file.
    void enter(const char* function);

    Sim& sim_;
    std::string line_;
    std::optional<Fault> fault_;
    // With a kept board, a change holds the state's lock for the whole call
    // and keeps the board as it was, to put back when the save fails.
    std::optional<vorafiles::Lock> lock_;
    std::optional<Board> before_;
    bool usable_ = true;  // false: this change cannot be kept
    bool lost_ = false;   // the change was made but could not be kept
};

}  // namespace vorasim
