#include "Simulation.h"

#include <jansson.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>

#include "BoardLibraries.h"
#include "Module.h"
#include "ToolError.h"
#include "files/Directory.h"
#include "files/Read.h"
#include "record/Recording.h"

namespace voractl {

namespace {

using voradrv::host::KnownLibrary;
using voradrv::host::kBoardLibraries;
using voradrv::host::LibraryOfGeneration;

// Set in the re-executed process, so it does not re-execute again.
constexpr const char* kMarker = "VORACTL_SIMULATED";

std::string SimulatorDirectory() {
    const std::string installed = InstalledPath(VORACTL_INSTALLED_SIM_DIR);
    if (access((installed + "/libvoraredirect.so").c_str(), R_OK) == 0) {
        return installed;
    }
    const std::string build = VORACTL_BUILD_SIM_DIR;
    if (access((build + "/libvoraredirect.so").c_str(), R_OK) == 0) {
        return build;
    }
    throw ToolError("the board simulator is not installed (looked in " + installed + " and " +
                    build + ")");
}

// The library of `generation`; "EApi", the library's own spelling, is
// taken for "eapi".
const KnownLibrary& LibraryOf(const std::string& generation) {
    const KnownLibrary* library = LibraryOfGeneration(generation == "EApi" ? "eapi" : generation);
    if (library == nullptr) {
        throw ToolError("--sim-generation must be 4, 3 or eapi", true);
    }
    return *library;
}

// Modification time of a file, or 0 when it cannot be read.
time_t ModifiedAt(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mtime : 0;
}

// Where this user's simulated boards are kept (files/Directory.h); empty
// when there is no private directory for them.
std::string StateDirectory() {
    try {
        return vorafiles::RuntimeDirectory("voractl");
    } catch (const vorafiles::FileError& e) {
        std::fprintf(stderr, "voractl: %s; the simulated board is not kept between runs\n", e.what());
        return "";
    }
}

// A state the simulator could not start from, or not keep changes in, is
// named with what to do about it. Only a regular file, or none, can be one.
void CheckState(const std::string& state) {
    const std::string reset = "; --sim-reset starts the simulated board again from its profile";
    struct stat status {};
    if (lstat(state.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) {
            throw ToolError("the simulated board's state " + state + " is " +
                            vorafiles::KindOf(status.st_mode) +
                            ", not a regular file; VORA_SIM_STATE names another file");
        }
        std::string text;
        try {
            text = vorafiles::Read(state, vorafiles::kStateLimit);
        } catch (const vorafiles::FileError& e) {
            throw ToolError("the simulated board's state " + state + " cannot be read (" + e.what() + ")" +
                            reset);
        }
        json_error_t error;
        json_t* board = json_loadb(text.data(), text.size(), 0, &error);
        json_decref(board);
        if (board == nullptr) {
            throw ToolError("the simulated board's state " + state + " is damaged (line " +
                            std::to_string(error.line) + ": " + error.text + ")" + reset);
        }
        if (access(state.c_str(), W_OK) != 0) {
            throw ToolError("the simulated board's state " + state + " cannot be written (" +
                            std::strerror(errno) + ")" + reset + ", or VORA_SIM_STATE names another file");
        }
    }
    const std::string dir = vorafiles::DirectoryOf(state[0] == '/' ? state : "./" + state);
    if (access(dir.c_str(), W_OK) != 0) {
        throw ToolError("the simulated board's state cannot be kept in " + dir + " (" +
                        std::strerror(errno) + "); VORA_SIM_STATE names another file");
    }
}

// Sets VORA_SIM_STATE unless the environment already names a state file,
// and forgets a state older than the board it came from.
void PrepareState(const std::string& profile, const std::string& library,
                  const std::string& generation, bool reset) {
    const char* given = std::getenv("VORA_SIM_STATE");
    std::string state;
    if (given != nullptr && *given != '\0') {
        state = given;
    } else {
        const std::string dir = StateDirectory();
        if (dir.empty()) {
            return;
        }
        const size_t key = std::hash<std::string>{}(profile.empty() ? "built-in" : profile);
        state = dir + "/voractl-sim-" + generation + "-" + std::to_string(key) + ".json";
        setenv("VORA_SIM_STATE", state.c_str(), 1);
    }
    const time_t board = ModifiedAt(profile.empty() ? library : profile);
    struct stat status {};
    // Only a state of ours is forgotten: whatever else is named there is
    // refused below, untouched.
    if ((reset || ModifiedAt(state) < board) && lstat(state.c_str(), &status) == 0 &&
        S_ISREG(status.st_mode)) {
        unlink(state.c_str());
    }
    CheckState(state);
}

// The generation of the recording at `path`; "" when it is no recording.
// A recording that cannot be replayed is refused, with its problem.
std::string RecordingGeneration(const std::string& path) {
    std::string text;
    try {
        text = vorarec::ReadBoardFile(path);
    } catch (const vorafiles::FileError& e) {
        throw ToolError("cannot read the board profile " + path + ": " + e.what());
    }
    if (!vorarec::IsRecording(text)) {
        return "";
    }
    vorarec::Recording recording;
    std::string error;
    if (!recording.load(text, error)) {
        throw ToolError("the recording " + path + " cannot be replayed: " + error);
    }
    return recording.generation();
}

// The board to simulate: --sim=FILE's profile or recording, else
// VORA_SIM_BOARD's; "" for the simulated library's own board. A file named
// by --sim is followed to where it leads, for the process that runs on
// after the exec, and a link another user planted in a shared directory is
// refused here, as the reader would refuse it.
std::string BoardFile(const SimulationRequest& request) {
    if (request.profile.empty()) {
        const char* board = std::getenv("VORA_SIM_BOARD");
        return board != nullptr ? board : "";
    }
    std::string profile;
    try {
        const vorafiles::Place place = vorafiles::Resolve(request.profile);
        profile = place.descriptor >= 0 ? request.profile : place.path;
    } catch (const vorafiles::FileError& e) {
        throw ToolError("cannot read the board profile " + request.profile + ": " + e.what());
    }
    setenv("VORA_SIM_BOARD", profile.c_str(), 1);
    return profile;
}

// The library to simulate: a recording's own, else the one asked for (the
// fourth generation when none is). A recording of another is refused, and
// --timing without a recording.
const KnownLibrary& Chosen(const SimulationRequest& request, const std::string& profile) {
    const KnownLibrary* asked =
        request.generation.empty() ? nullptr : &LibraryOf(request.generation);
    const std::string recorded = profile.empty() ? "" : RecordingGeneration(profile);
    if (recorded.empty()) {
        if (request.timing) {
            throw ToolError("--timing replays a recording at its recorded speed: give "
                            "--sim=RECORDING",
                            true);
        }
        return asked != nullptr ? *asked : kBoardLibraries[0];
    }
    const KnownLibrary& library = LibraryOf(recorded);
    if (asked != nullptr && asked != &library) {
        const std::string& named = request.profile.empty() ? profile : request.profile;
        throw ToolError(named + " is a recording of the " + library.text + " library, not of the " +
                            asked->text + " one",
                        true);
    }
    return library;
}

// VORA_REDIRECT: every file the module may open reads as absent but the
// chosen library's first, which is the simulated library in `dir`.
std::string Redirection(const KnownLibrary& chosen, const std::string& dir) {
    std::string redirect;
    for (const KnownLibrary& library : kBoardLibraries) {
        for (const char* path : library.paths) {
            const bool mapped = &library == &chosen && path == library.paths[0];
            redirect += (redirect.empty() ? "" : ":") + std::string(path) + "=" +
                        (mapped ? dir + "/" + library.name + ".so" : "");
        }
    }
    return redirect;
}

// The simulated library of the chosen generation in place of the real one,
// its board the profile or recording asked for.
void Simulate(SimulationRequest& request, const std::string& dir) {
    const std::string profile = BoardFile(request);
    const KnownLibrary& chosen = Chosen(request, profile);
    request.generation = chosen.generation;
    setenv("VORA_REDIRECT", Redirection(chosen, dir).c_str(), 1);
    PrepareState(profile, dir + "/" + chosen.name + ".so", request.generation, request.reset);
}

}  // namespace

std::string SimulatedBoardState() {
    const char* state = std::getenv("VORA_SIM_STATE");
    return std::getenv(kMarker) != nullptr && state != nullptr ? state : "";
}

void EnterSimulation(SimulationRequest request, char** argv) {
    const char* recordTo = std::getenv("VORA_RECORD");
    const bool records = request.record >= 0 || (recordTo != nullptr && *recordTo != '\0');
    if ((!request.enabled && !request.trace && !records) || std::getenv(kMarker) != nullptr) {
        return;
    }
    const std::string dir = SimulatorDirectory();
    std::string preload = dir + "/libvoraredirect.so";
    if (const char* existing = std::getenv("LD_PRELOAD"); existing != nullptr && *existing) {
        preload = std::string(existing) + ":" + preload;
    }
    if (request.trace) {
        setenv("VORA_TRACE", "1", 1);
    }
    if (request.record >= 0) {
        setenv("VORA_RECORD_FD", std::to_string(request.record).c_str(), 1);
    }
    if (request.timing) {
        setenv("VORA_SIM_TIMING", "1", 1);
    }
    if (request.enabled) {
        Simulate(request, dir);
    } else {
        unsetenv("VORA_REDIRECT");  // the real board library, where it is
    }
    setenv("LD_PRELOAD", preload.c_str(), 1);
    setenv(kMarker, "1", 1);
    execv("/proc/self/exe", argv);
    throw ToolError(std::string("cannot re-run under the path redirection: ") + std::strerror(errno));
}

}  // namespace voractl
