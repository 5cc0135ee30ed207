#include "Simulation.h"

#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Format.h"
#include "Module.h"

namespace voractl {

namespace {

// Set in the re-executed process, so it does not re-execute again.
constexpr const char* kMarker = "VORACTL_SIMULATED";

std::string SimulatorDirectory() {
    const std::string installed = ExecutableDirectory() + "/" VORACTL_INSTALLED_SIM_DIR;
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

const char* LibraryOf(const std::string& generation) {
    if (generation == "4") {
        return "libVORA-4.00";
    }
    if (generation == "3") {
        return "libVORA-3.02";
    }
    if (generation == "eapi" || generation == "EApi") {
        return "libEApi";
    }
    throw ToolError("--sim-generation must be 4, 3 or eapi", true);
}

}  // namespace

void EnterSimulation(const SimulationRequest& request, char** argv) {
    if (!request.enabled || std::getenv(kMarker) != nullptr) {
        return;
    }
    const std::string dir = SimulatorDirectory();
    const std::string chosen = LibraryOf(request.generation);

    // Every path the module probes reads as absent but the chosen library's.
    std::string redirect;
    for (const char* library : {"libVORA-4.00", "libVORA-3.02", "libEApi"}) {
        for (const char* probe : {"/usr/lib/", "/usr/lib64/"}) {
            const bool mapped = chosen == library && std::strcmp(probe, "/usr/lib/") == 0;
            redirect += (redirect.empty() ? "" : ":") + std::string(probe) + library + ".so=" +
                        (mapped ? dir + "/" + library + ".so" : "");
        }
    }
    std::string preload = dir + "/libvoraredirect.so";
    if (const char* existing = std::getenv("LD_PRELOAD"); existing != nullptr && *existing) {
        preload = std::string(existing) + ":" + preload;
    }
    if (!request.profile.empty()) {
        char absolute[PATH_MAX];
        if (realpath(request.profile.c_str(), absolute) == nullptr) {
            throw ToolError("cannot read the board profile " + request.profile + ": " +
                            std::strerror(errno));
        }
        setenv("VORA_SIM_BOARD", absolute, 1);
    }
    setenv("VORA_REDIRECT", redirect.c_str(), 1);
    setenv("LD_PRELOAD", preload.c_str(), 1);
    setenv(kMarker, "1", 1);
    execv("/proc/self/exe", argv);
    throw ToolError(std::string("cannot re-run under the simulator: ") + std::strerror(errno));
}

}  // namespace voractl
