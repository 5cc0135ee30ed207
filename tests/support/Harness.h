// What the module tests share: the module loaded through the host loader, as
// a host loads it; the simulated board libraries reached through the path
// redirection, with their control interface to set the stage; what the
// module prints; and the JSON of its documents.
//
// Every test runs in a process of its own (ctest runs one test per process),
// so the module's process-wide state starts fresh in each.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ModuleHost.h"
#include "json/JsonPtr.h"

namespace vtest {

enum class Generation { Vora4, Vora3, EApi };

// The generation named "4", "3" or "eapi".
std::optional<Generation> GenerationNamed(const std::string& name);
// The library's own name, as the module probes it ("libVORA-4.00").
const char* LibraryName(Generation generation);
// File of the simulated library of a generation in the build tree.
std::string SimLibraryPath(Generation generation);

// The six paths the module probes all read as absent but those in
// `present`, each mapped to a file.
void Redirect(const std::vector<std::pair<std::string, std::string>>& present = {});
// The simulated library of `generation` at `dir` (/usr/lib or /usr/lib64),
// the other probe paths absent, sensors standing still; a non-empty
// `profile` (JSON text) is the board.
void UseSimulator(Generation generation, const std::string& profile = "",
                  const std::string& dir = "/usr/lib");
// The profile of the largest board `generation`'s library can present.
std::string LargestBoard(Generation generation);

// Writes `text` to a fresh file (removed at process exit); returns its path.
std::string WriteTempFile(const std::string& text);
std::string FileText(const std::string& path);

// The module of the build tree, loaded once per process through the host
// loader and kept until the process ends, as a host keeps it.
voradrv::host::ModuleHost& Module();

// The control interface of one simulated library (sim/vorasim.h). Loading
// it loads the library at the path the module reaches it through.
class SimControl {
public:
    explicit SimControl(Generation generation);

    std::string loadProfileError(const std::string& json);  // "" when it loaded
    std::string addFaultError(const std::string& json);     // "" when it was added
    void clearFaults();
    void startLog();
    // The calls since the last take, one line each.
    std::string takeLog();

private:
    void* symbol(const char* name) const;
    void* handle_;
};

// Captures what is written to standard output (file descriptor 1), where
// the module prints, while it lives.
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

std::vector<std::string> Lines(const std::string& text);
// "0x0000ABCD".
std::string Hex(uint32_t value);

using vorajson::JsonPtr;
using vorajson::Own;
// Parses JSON text; null (with `error` set when given) on a syntax error.
JsonPtr Parse(const std::string& text, std::string* error = nullptr);
// Compact JSON text of a value, keys in document order.
std::string Dump(const json_t* json);

// With VTEST_UPDATE_GOLDEN=1 golden files are written instead of compared.
bool UpdatingGolden();
// The path of tests/data/golden/<name>.
std::string GoldenPath(const std::string& name);
// "" when `actual` is the text of golden file `name` (or the file was just
// written); else what differs, first line first.
std::string GoldenDifference(const std::string& actual, const std::string& name);

// A published item: its id, the JSON type of its value, and "asm" "rw".
struct Item {
    uint32_t id;
    json_type type;  // JSON_REAL, JSON_STRING or JSON_INTEGER
    bool writable;
};
// The items of a capability document, each id once, in document order.
std::vector<Item> Items(const json_t* document);

// A fresh value of `type` that a successful read overwrites and a failed
// one leaves as it is.
json_t* Sentinel(json_type type);

}  // namespace vtest
