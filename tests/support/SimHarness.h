// Test harness: reaching the simulated board libraries through the path
// redirection, driving the simulator's control interface, capturing what the
// module prints, and reading the module's capability document and items.
//
// Every test runs in a process of its own (ctest runs one test per process),
// so the bindings' process-wide state starts fresh in each.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vtest {

enum class Generation { Vora4, Vora3, EApi };

// The generation named "4", "3" or "eapi", as the test programs take it.
std::optional<Generation> GenerationNamed(const std::string& name);
// File of the simulated library of a generation in the build tree.
std::string SimLibraryPath(Generation generation);
// The library's own name, as the module probes it ("libVORA-4.00").
const char* LibraryName(Generation generation);

// The six paths the module probes: /usr/lib and /usr/lib64 for each library.
// Sets the redirection so that every one of them reads as absent except the
// given ones, which map to the given files.
void Redirect(std::initializer_list<std::pair<std::string, std::string>> present = {});

// Puts the simulated library of `generation` at `dir` (/usr/lib or
// /usr/lib64) and makes the other probe paths absent; sensors stand still. A
// non-empty `profile` (JSON text) becomes the board.
void UseSimulator(Generation generation, const std::string& profile = "",
                  const std::string& dir = "/usr/lib");

// The text of the profile of the largest board `generation`'s library can
// present (sim/profiles/<generation>-largest.json).
std::string LargestBoard(Generation generation);

// Hides library functions from the module's symbol lookups.
void HideSymbols(const std::string& commaSeparatedNames);

// Writes `text` to a fresh file (removed at process exit); returns its path.
std::string WriteTempFile(const std::string& text);

// The text of a file ("" when it cannot be read).
std::string FileText(const std::string& path);

// The simulator's control interface of one simulated library. Loading it
// loads the library itself, at the path the module will reach it through.
class SimControl {
public:
    explicit SimControl(Generation generation);

    void loadProfile(const std::string& json);              // fails the test on error
    std::string loadProfileError(const std::string& json);  // "" if it loaded
    void addFault(const std::string& json);                 // fails the test on error
    void clearFaults();
    void startLog();
    std::string log();
    void clearLog();
    // Number of log lines that start with `prefix`.
    int count(const std::string& prefix);

    // A function of the simulated library, called directly: Fn is its type.
    template <typename Fn>
    Fn* function(const char* name) const {
        return reinterpret_cast<Fn*>(symbol(name));
    }

private:
    void* symbol(const char* name) const;
    void* handle_;
};

// UseSimulator(generation, profile), then initialises the module, which must
// succeed; returns the control interface of the simulated library.
SimControl Initialised(Generation generation, const std::string& profile = "");

// Captures everything written to standard output (file descriptor 1) while
// it lives.
class StdoutCapture {
public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;
    // What was printed since the last take(), capturing on.
    std::string take();
    // Stops capturing and returns what take() had not handed out.
    std::string finish();

private:
    int saved_ = -1;
    int file_ = -1;
    long offset_ = 0;
};

// Calls `call` (an entry point, say) with what it prints dropped.
template <typename Call>
auto Quietly(Call call) {
    StdoutCapture quiet;
    return call();
}

// The lines of a text, without their line ends.
std::vector<std::string> Lines(const std::string& text);
// "0x0000ABCD".
std::string Hex(uint32_t value);

using JsonPtr = std::unique_ptr<json_t, decltype(&json_decref)>;
inline JsonPtr Own(json_t* json) { return JsonPtr(json, &json_decref); }
// Parses JSON text; fails the test on a syntax error.
JsonPtr Parse(const std::string& text);
// Compact JSON text of a value, keys in document order.
std::string Dump(const json_t* json);

// Compares `actual` with the golden file tests/data/golden/<name>, as JSON
// (keys in their order) or as text. With VTEST_UPDATE_GOLDEN=1 in the environment the file is written
// instead.
void ExpectGolden(const json_t* actual, const std::string& name);
void ExpectGoldenText(const std::string& actual, const std::string& name);

// The module's capability document (through VoraIoTGetMDCapability).
JsonPtr ModuleCapability();
// The member `block` of the module's document ("GPIO"), or null.
JsonPtr CapabilityOf(const char* block);
// Calls `visit` for every element (member of an "e" array) of `node` and the
// objects below it, depth first in document order.
void ForEachElement(const json_t* node, const std::function<void(const json_t*)>& visit);
// The element with item id `id` anywhere in `node`, or null.
const json_t* FindElement(const json_t* node, uint32_t id);

// The "n" of every element of group `group` of `block`, joined by commas.
std::string GroupNames(const json_t* block, const char* group);

// A published item: its id, the JSON type of its value, and "asm" "rw".
struct Item {
    uint32_t id;
    json_type type;  // JSON_REAL, JSON_STRING or JSON_INTEGER
    bool writable;
};
// The items of `node`, each id once, in document order.
std::vector<Item> Items(const json_t* node);

// A fresh value of `type` that a successful read overwrites and a failed one
// must leave as it is.
json_t* Sentinel(json_type type);
// Reads item `id` through the module into Sentinel(type); `status` receives
// the module's answer (without it, anything but success fails the test).
JsonPtr ReadItem(uint32_t id, json_type type, uint32_t* status = nullptr);
std::string ReadText(uint32_t id);
double ReadReal(uint32_t id);
json_int_t ReadInteger(uint32_t id);
// Writes `value` (a new reference, released here) to item `id`.
uint32_t Write(uint32_t id, json_t* value);

}  // namespace vtest
