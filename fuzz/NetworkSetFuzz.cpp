// Fuzz target: the whole set path of the network block, from the entry point
// to the simulated fourth-generation board. Each input picks an item
// (0x10B0001..0x10B0010) and a JSON value of any type; the target holds the
// module to the rules that hold for any value, through the simulator's call
// log: a refused value reaches no library call, a set writes at most once
// and only the item's own board value, and the item still reads. The
// sanitizers watch for crashes, leaks and double releases.
//
// Input: byte 0 the item, byte 1 the value's kind, the rest its payload.
// Run it with the path redirection preloaded:
//   build-fuzz/sim/run-simulated -- build-fuzz/fuzz/fuzz_network_set CORPUS...
#include <dlfcn.h>
#include <fcntl.h>
#include <jansson.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "BoardLibraries.h"
#include "ModuleHost.h"
#include "vorasim.h"

namespace {

const char kSimulator[] = FUZZ_SIM_DIR "/libVORA-4.00.so";

voradrv::host::ModuleHost* module;
decltype(&vorasim_call_log) callLog;
decltype(&vorasim_clear_log) clearLog;

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "fuzz_network_set: %s\n", what.c_str());
    std::abort();
}

// The fourth-generation simulator at /usr/lib; the other five places the
// module probes read as absent.
void RedirectToSimulator() {
    std::string list;
    for (const voradrv::host::KnownLibrary& library : voradrv::host::kBoardLibraries) {
        for (const char* path : library.paths) {
            const bool present = std::string(path) == voradrv::host::kBoardLibraries[0].paths[0];
            list += (list.empty() ? "" : ":") + std::string(path) + "=" + (present ? kSimulator : "");
        }
    }
    setenv("VORA_REDIRECT", list.c_str(), 1);
    unsetenv("VORA_SIM_BOARD");  // the built-in board
    unsetenv("VORA_HIDE_SYMBOLS");
}

// A JSON value of the kind `kind` made from `payload`; may be null.
json_t* MakeValue(uint8_t kind, const uint8_t* payload, size_t size) {
    const char* text = reinterpret_cast<const char*>(payload);
    int64_t number = 0;
    std::memcpy(&number, payload, size < sizeof number ? size : sizeof number);
    switch (kind % 9) {
        case 0: return nullptr;
        case 1: return json_null();
        case 2: return json_boolean(number & 1);
        case 3: return json_integer(number);
        case 4: {
            double real = 0;
            std::memcpy(&real, &number, sizeof real);
            return json_real(real);  // null for NaN and infinities
        }
        case 5: return json_stringn(text, size);  // null unless UTF-8
        case 6: return json_stringn_nocheck(text, size);
        case 7: return json_pack("[s#]", text, static_cast<int>(size));
        default: return json_pack("{s:I}", "v", static_cast<json_int_t>(number));
    }
}

// The number of lines of `log` that write to the board, and whether one
// wrote anything but `board`.
int Writes(const std::string& log, uint32_t board, bool& elsewhere) {
    char own[64];
    std::snprintf(own, sizeof own, "VoraBoardSetValue 0x%X ", board);
    int writes = 0;
    for (size_t start = 0; start < log.size();) {
        size_t end = log.find('\n', start);
        end = end == std::string::npos ? log.size() : end;
        const std::string line = log.substr(start, end - start);
        if (line.find("Set") != std::string::npos) {
            ++writes;
            elsewhere = elsewhere || line.rfind(own, 0) != 0;
        }
        start = end + 1;
    }
    return writes;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    RedirectToSimulator();
    // The module's diagnostics go to standard output; libFuzzer reports on
    // standard error.
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, 1);
    close(null);
    try {
        module = new voradrv::host::ModuleHost(FUZZ_MODULE);
    } catch (const voradrv::host::LoadError& e) {
        Fail(e.what());
    }
    const uint32_t status = module->initialize();
    if (status != VORADRV_STATUS_SUCCESS) {
        char text[160];
        std::snprintf(text, sizeof text,
                      "the module did not come up (0x%08X); run under sim/run-simulated "
                      "so that the path redirection is preloaded", status);
        Fail(text);
    }
    void* simulator = dlopen(kSimulator, RTLD_NOW | RTLD_NOLOAD);
    if (simulator == nullptr) {
        Fail("the module did not load the simulator");
    }
    auto enable =
        reinterpret_cast<decltype(&vorasim_log_enable)>(dlsym(simulator, "vorasim_log_enable"));
    callLog = reinterpret_cast<decltype(&vorasim_call_log)>(dlsym(simulator, "vorasim_call_log"));
    clearLog =
        reinterpret_cast<decltype(&vorasim_clear_log)>(dlsym(simulator, "vorasim_clear_log"));
    if (enable == nullptr || callLog == nullptr || clearLog == nullptr) {
        Fail("the simulator lacks its control interface");
    }
    enable(1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) {
        return 0;
    }
    const uint32_t item = 0x10B0001 + data[0] % 16;
    const uint32_t board = 0x12000 + (item - 0x10B0001);
    json_t* value = MakeValue(data[1], data + 2, size - 2);

    clearLog();
    const uint32_t status = module->set(item, value);
    bool elsewhere = false;
    const int writes = Writes(callLog(), board, elsewhere);
    if (elsewhere || writes > 1) {
        Fail("a set wrote more than once, or to another value");
    }
    if ((status == VORADRV_STATUS_ERROR || status == VORADRV_STATUS_INVALID_VALUE) && writes != 0) {
        Fail("a value the module refused reached the board");
    }
    // Every item still reads as a number (its first word).
    json_t* number = json_integer(0);
    if (module->get(item, number) != 0) {
        Fail("the item no longer reads after a set");
    }
    // The read path with the fuzzed value, for the sanitizers.
    module->get(item, value);
    json_decref(number);
    json_decref(value);
    clearLog();
    return 0;
}
