// Fuzz target: the whole set path of the network block, from the entry point
// to the simulated fourth-generation board. Each input picks an item
// (0x10B0001..0x10B0010) and a JSON value of any type; the target checks,
// through the simulator's call log, that a refused value reaches no library
// call and an accepted one exactly one with the words the value stands for.
// The sanitizers watch for crashes, leaks and double releases.
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
#include <optional>
#include <string>
#include <vector>

#include "fuzz/AddressOracle.h"
#include "voradrv.h"
#include "vorasim.h"

namespace {

const char kSimulator[] = FUZZ_SIM_DIR "/libVORA-4.00.so";

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
    for (const char* library : {"libVORA-4.00", "libVORA-3.02", "libEApi"}) {
        for (const char* dir : {"/usr/lib", "/usr/lib64"}) {
            const std::string path = std::string(dir) + "/" + library + ".so";
            const bool present = path == "/usr/lib/libVORA-4.00.so";
            list += (list.empty() ? "" : ":") + path + "=" + (present ? kSimulator : "");
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

// What the module must do with `value` at board value `board`: nothing
// (refused, or a string without a string form) or write these words.
struct Expected {
    bool refused = false;
    std::optional<std::vector<unsigned>> words;
};

Expected Expect(uint32_t board, const json_t* value) {
    Expected e;
    if (json_is_integer(value)) {
        e.words = std::vector<unsigned>{static_cast<unsigned>(json_integer_value(value))};
        return e;
    }
    if (!json_is_string(value)) {
        e.refused = true;
        return e;
    }
    const std::string text = json_string_value(value);  // up to the first zero byte
    if (board == 0x12002) {
        e.words = oracle::HostName(text);
    } else if (board == 0x12003) {
        if (auto mac = oracle::Mac(text)) {
            e.words = std::vector<unsigned>(mac->begin(), mac->end());
        }
    } else if (board >= 0x12004 && board <= 0x12007) {
        if (auto address = oracle::Address(text)) {
            e.words = std::vector<unsigned>(address->begin(), address->end());
        }
    } else {
        return e;  // accepted without effect
    }
    e.refused = !e.words;
    return e;
}

// The words of the log's write lines for `board`, one vector per line.
std::vector<std::vector<unsigned>> Writes(const std::string& log, uint32_t board) {
    char prefix[64];
    std::snprintf(prefix, sizeof prefix, "VoraBoardSetValue 0x%X words=", board);
    std::vector<std::vector<unsigned>> writes;
    size_t start = 0;
    while (start < log.size()) {
        size_t end = log.find('\n', start);
        end = end == std::string::npos ? log.size() : end;
        const std::string line = log.substr(start, end - start);
        if (line.rfind("VoraBoardSetValue", 0) == 0) {
            if (line.rfind(prefix, 0) != 0) {
                Fail("a write to another value: " + line);
            }
            std::vector<unsigned> words;
            const char* p = line.c_str() + std::strlen(prefix);
            while (*p != '\0') {
                char* next = nullptr;
                words.push_back(static_cast<unsigned>(std::strtoul(p, &next, 16)));
                p = *next == ',' ? next + 1 : next;
                if (next == p && *p != '\0') {
                    Fail("unreadable log line: " + line);
                }
            }
            writes.push_back(words);
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
    const uint32_t status = VoraIoTInitialize();
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
    const Expected expected = Expect(board, value);

    clearLog();
    const uint32_t status = VoraIoTSetMDValue(item, value);
    const auto writes = Writes(callLog(), board);
    if (!expected.words) {
        if (!writes.empty()) {
            Fail("a value that must not be written reached the board");
        }
        if (status != (expected.refused ? VORADRV_STATUS_ERROR : VORADRV_STATUS_SUCCESS)) {
            Fail("unexpected status of a value without a write");
        }
    } else {
        if (writes.size() != 1 || writes[0].empty()) {
            Fail("an accepted value did not reach the board exactly once");
        }
        // The library sees the id's whole array: the value's words, then zeros.
        const std::vector<unsigned>& want = *expected.words;
        for (size_t i = 0; i < writes[0].size(); ++i) {
            if (writes[0][i] != (i < want.size() ? want[i] : 0u)) {
                Fail("word " + std::to_string(i) + " differs from the value's");
            }
        }
        if (status == VORADRV_STATUS_ERROR) {
            Fail("a written value was reported as refused");
        }
    }
    // The read path with the same value, for the sanitizers.
    VoraIoTGetMDValue(item, value);
    json_decref(value);
    clearLog();
    return 0;
}
