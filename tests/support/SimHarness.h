// Test harness: reaching the simulated board libraries through the path
// redirection, driving the simulator's control interface, and capturing
// what the module prints.
//
// Every test runs in a process of its own (ctest runs one test per process),
// so the bindings' process-wide state starts fresh in each.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

namespace vtest {

enum class Generation { Vora4, Vora3, EApi };

// File of the simulated library of a generation in the build tree.
std::string SimLibraryPath(Generation generation);
// The library's own name, as the module probes it ("libVORA-4.00").
const char* LibraryName(Generation generation);

// The six paths the module probes: /usr/lib and /usr/lib64 for each library.
// Sets the redirection so that every one of them reads as absent except the
// given ones, which map to the given files.
void Redirect(std::initializer_list<std::pair<std::string, std::string>> present = {});

// Puts the simulated library of `generation` at `dir` (/usr/lib or
// /usr/lib64) and makes the other probe paths absent. A non-empty `profile`
// (JSON text) becomes the board.
void UseSimulator(Generation generation, const std::string& profile = "",
                  const std::string& dir = "/usr/lib");

// The text of the profile of the largest board `generation`'s library can
// present (sim/profiles/<generation>-largest.json).
std::string LargestBoard(Generation generation);

// Hides library functions from the module's symbol lookups.
void HideSymbols(const std::string& commaSeparatedNames);

// Writes `json` to a fresh file (removed at process exit); returns its path.
std::string WriteTempFile(const std::string& json);

// The simulator's control interface of one simulated library. Loading it
// loads the library itself, at the path the module will reach it through.
class SimControl {
public:
    explicit SimControl(Generation generation);

    void loadProfile(const std::string& json);     // fails the test on error
    std::string loadProfileError(const std::string& json);  // "" if it loaded
    void addFault(const std::string& json);         // fails the test on error
    void clearFaults();
    void startLog();
    std::string log();
    void clearLog();
    // Number of log lines that start with `prefix`.
    int count(const std::string& prefix);

    void* handle() const { return handle_; }

private:
    void* symbol(const char* name) const;
    void* handle_;
};

// Captures everything written to standard output (file descriptor 1) while
// it lives.
class StdoutCapture {
public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;
    // Stops capturing and returns the text.
    std::string finish();

private:
    int saved_ = -1;
    int file_ = -1;
};

}  // namespace vtest

#include <jansson.h>

#include <memory>

namespace vtest {

using JsonPtr = std::unique_ptr<json_t, decltype(&json_decref)>;
inline JsonPtr Own(json_t* json) { return JsonPtr(json, &json_decref); }
// Parses JSON text; fails the test on a syntax error.
JsonPtr Parse(const std::string& text);
// Compact JSON text of a value, keys in document order.
std::string Dump(const json_t* json);

// Compares `actual` with the golden JSON file tests/data/golden/<name>. With
// VTEST_UPDATE_GOLDEN=1 in the environment the file is written instead.
void ExpectGolden(const json_t* actual, const std::string& name);

}  // namespace vtest

namespace vtest {

// The module's capability document (through VoraIoTGetMDCapability).
JsonPtr ModuleCapability();
// The element with item id `id` anywhere in `block` (a block's member of the
// document), or null.
const json_t* FindElement(const json_t* block, uint32_t id);
// Reads item `id` through the module into a fresh JSON value of `type`;
// `status` receives the module's answer.
JsonPtr ReadItem(uint32_t id, json_type type, uint32_t* status = nullptr);

}  // namespace vtest
