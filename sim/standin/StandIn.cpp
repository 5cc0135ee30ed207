// The stand-in for a board library, made from the library's table: it
// exports every function of the real library under the real file name,
// opens the real library by its real path past the path redirection (which
// points the module here when VORA_TRACE or VORA_RECORD is set), and passes
// every call on to it unchanged. On the way back it
// - with VORA_TRACE=1, prints the call to standard error as it returns, one
//   line each, like ltrace: the function, what went in, the status, what
//   came out and the time it took;
// - with VORA_RECORD=FILE, keeps every answer to every distinct call, in
//   order, with the time it took, and writes the recording to FILE (by
//   files/Write.h's rules; redacted with VORA_RECORD_REDACT=1) when the
//   library is shut down, when its initialise fails, when the recording is
//   full, and at exit when calls came after that; with VORA_RECORD_FD=N
//   instead, makes descriptor N (voractl's file in memory) hold the
//   recording at those times, so it never reaches a disk.
// A full recording (Recording.h) takes no more calls; that is said once.
// It is built once per library: STANDIN_TABLE, STANDIN_NAME (the library's
// name) and STANDIN_GENERATION say which.
#include <dlfcn.h>
#include <time.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#define VORADRV_TABLES_ONLY
#include STANDIN_TABLE_HEADER
#include "files/Write.h"
#include "record/Calls.h"
#include "record/Libraries.h"
#include "record/Recording.h"

namespace {

constexpr uint32_t kSymbolMissing = 0xF0000000;

struct StandIn {
    StandIn() {
        // The real library: where the redirection would have led the module.
        using Target = const char* (*)(const char*);
        using Open = void* (*)(const char*, int);
        auto target = reinterpret_cast<Target>(dlsym(RTLD_DEFAULT, "voraredirect_standin_target"));
        auto open = reinterpret_cast<Open>(dlsym(RTLD_DEFAULT, "voraredirect_dlopen_real"));
        const char* path = target != nullptr ? target(STANDIN_NAME) : nullptr;
        if (path != nullptr && *path != '\0' && open != nullptr) {
            real = open(path, RTLD_LAZY | RTLD_LOCAL);
            this->path = path;
        }
        if (real == nullptr) {
            std::fprintf(stderr, "voradrv stand-in: cannot open the real %s%s%s\n", STANDIN_NAME,
                         path != nullptr ? " at " : "", path != nullptr ? path : "");
        }
        const char* t = std::getenv("VORA_TRACE");
        trace = t != nullptr && std::strcmp(t, "1") == 0;
        const char* r = std::getenv("VORA_RECORD");
        recordTo = r != nullptr ? r : "";
        const char* handed = std::getenv("VORA_RECORD_FD");
        char* end = nullptr;
        const long fd = handed != nullptr ? std::strtol(handed, &end, 10) : -1;
        if (handed != nullptr && *handed != '\0' && *end == '\0' && fd >= 0 && fd < 65536) {
            handTo = static_cast<int>(fd);
        }
        const char* redact = std::getenv("VORA_RECORD_REDACT");
        redacted = redact != nullptr && std::strcmp(redact, "1") == 0;
        recording.setLibrary(STANDIN_NAME, STANDIN_GENERATION, this->path);
    }
    ~StandIn() { save(); }

    // The real library's function `name`, or null when it lacks it.
    void* symbol(const char* name) const { return real != nullptr ? dlsym(real, name) : nullptr; }

    bool records() const { return handTo >= 0 || !recordTo.empty(); }

    // The recording's text, redacted when asked; what is not to be written
    // unredacted is never written.
    std::string text() const {
        if (!redacted) {
            return recording.text();
        }
        vorarec::Recording copy;
        std::string error;
        if (!copy.load(recording.text(), error)) {
            throw vorafiles::FileError("it cannot be redacted: " + error);
        }
        copy.redact();
        return copy.text();
    }

    void save() {
        if (!unsaved) {
            return;
        }
        unsaved = false;
        try {
            if (handTo >= 0) {
                vorafiles::Rewrite(handTo, text());
            } else if (!recordTo.empty()) {
                vorafiles::Write(recordTo, text());
            }
        } catch (const vorafiles::FileError& e) {
            std::fprintf(stderr, "voradrv stand-in: cannot write the recording to %s: %s\n",
                         handTo >= 0 ? "voractl" : recordTo.c_str(), e.what());
        }
    }

    void* real = nullptr;
    std::string path;
    bool trace = false;
    std::string recordTo;
    int handTo = -1;
    bool redacted = false;  // VORA_RECORD_REDACT=1
    bool unsaved = false;   // calls came since the recording was last written
    vorarec::Recording recording;
};

StandIn& State() {
    static StandIn state;
    return state;
}

double Seconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

template <typename Result, typename... Args>
struct Intercept {
    const vorarec::Signature& signature;
    Result (*real)(Args...);

    // Passes the call on, then traces and records it.
    Result operator()(Args... args) const {
        json_t* in = vorarec::Inputs(signature, args...);
        const size_t size = vorarec::detail::BufferSize(signature, args...);
        const double start = Seconds();
        if constexpr (std::is_void_v<Result>) {
            if (real != nullptr) {
                real(args...);
            }
            done(in, nullptr, Seconds() - start, vorarec::Outputs(signature, size, args...));
        } else {
            const Result result = real != nullptr ? real(args...) : kSymbolMissing;
            done(in, json_integer(result), Seconds() - start, vorarec::Outputs(signature, size, args...));
            return result;
        }
    }

    void done(json_t* in, json_t* status, double took, json_t* out) const {
        StandIn& state = State();
        if (state.trace) {
            std::fprintf(stderr, "%s\n", vorarec::TraceLine(signature, in, status, out, took).c_str());
        }
        if (!state.records()) {
            json_decref(in);
            json_decref(status);
            json_decref(out);
            return;
        }
        const uint32_t result = status != nullptr ? static_cast<uint32_t>(json_integer_value(status)) : 0;
        const bool wasFull = state.recording.full();
        state.unsaved = state.recording.add(signature.function, in, status, out, took) || state.unsaved;
        if (state.recording.full() && !wasFull) {
            std::fprintf(stderr, "voradrv stand-in: the recording is full (%zu answers; it holds at most %zu "
                         "answers and 16 MiB); later calls are not recorded\n",
                         state.recording.answers(), vorarec::kMostAnswers);
            state.unsaved = true;
            state.save();
        }
        // A shut-down is where a host stops using the library, and so is an
        // initialise that fails: the recording is whole there (and is
        // written again at exit when more calls come).
        const vorarec::Library& library = *vorarec::LibraryOf(STANDIN_GENERATION);
        if (signature.function.find("UnInit") != std::string::npos ||
            signature.function.find("Uninit") != std::string::npos ||
            (library.initialises(signature.function) && result != library.ok)) {
            state.save();
        }
    }
};

template <typename Result, typename... Args>
Intercept<Result, Args...> Through(const vorarec::Signature& signature, Result (*real)(Args...)) {
    return {signature, real};
}

}  // namespace

// The file this stand-in stands in front of, for a host that asks which
// board library it is using; and for the host that records (voractl
// record), whether the recording takes no more calls, and its writing now.
extern "C" {
__attribute__((visibility("default"))) const char* vora_standin_target = nullptr;
__attribute__((visibility("default"))) int vora_standin_full(void) { return State().recording.full() ? 1 : 0; }
__attribute__((visibility("default"))) void vora_standin_save(void) { State().save(); }
}

#define STANDIN_FUNCTION(result, name, parameters, arguments)                                 \
    extern "C" __attribute__((visibility("default"))) result name parameters {               \
        static const vorarec::Signature signature(#name, #parameters);                        \
        static const auto real = reinterpret_cast<result(*) parameters>(State().symbol(#name)); \
        vora_standin_target = State().path.c_str();                                           \
        return Through(signature, real) arguments;                                            \
    }
STANDIN_TABLE(STANDIN_FUNCTION, STANDIN_FUNCTION)
