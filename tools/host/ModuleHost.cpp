#include "ModuleHost.h"

#include <dlfcn.h>
#include <link.h>

#include <cstring>
#include <vector>

namespace voradrv::host {

namespace {

template <typename Fn>
void Bind(void* handle, Fn& pointer, const char* name) {
    pointer = reinterpret_cast<Fn>(dlsym(handle, name));
    if (pointer == nullptr) {
        throw LoadError(std::string("the module lacks the entry point ") + name);
    }
}

struct Known {
    const char* file;
    const char* name;
    const char* generation;
};
// In the order the module tries them.
constexpr Known kLibraries[] = {{"libVORA-4.00.so", "libVORA-4.00", "4"},
                                {"libVORA-3.02.so", "libVORA-3.02", "3"},
                                {"libEApi.so", "libEApi", "eapi"}};

int Collect(struct dl_phdr_info* info, size_t, void* data) {
    auto& paths = *static_cast<std::vector<std::string>*>(data);
    if (info->dlpi_name != nullptr && *info->dlpi_name != '\0') {
        paths.emplace_back(info->dlpi_name);
    }
    return 0;
}

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// What a loaded library says of itself: the file behind a stand-in (or
// `path` itself for any other library), and a simulated library's replay.
BoardLibrary Describe(const std::string& path, const Known& known) {
    BoardLibrary library{path, known.name, known.generation, ""};
    void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr) {
        return library;
    }
    const auto* target = static_cast<const char* const*>(dlsym(handle, "vora_standin_target"));
    library.path = target != nullptr && *target != nullptr ? *target : path;
    using Replay = const char* (*)();
    if (const auto replay = reinterpret_cast<Replay>(dlsym(handle, "vorasim_replay"))) {
        library.replay = replay();
    }
    dlclose(handle);
    return library;
}

// The file of the board library in use as loaded: of those loaded, the
// last in the order the module tries them. Empty when none is.
std::string InUse() {
    std::vector<std::string> paths;
    dl_iterate_phdr(Collect, &paths);
    std::string found;
    int rank = -1;
    for (const std::string& path : paths) {
        for (int i = 0; i < 3; ++i) {
            if (BaseName(path) == kLibraries[i].file && i >= rank) {
                found = path;
                rank = i;
            }
        }
    }
    return found;
}

}  // namespace

ModuleHost::ModuleHost(const std::string& path) : path_(path) {
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        throw LoadError("cannot load the module " + path + ": " + dlerror());
    }
    Bind(handle, initialize_, "VoraIoTInitialize");
    Bind(handle, uninitialize_, "VoraIoTUninitialize");
    Bind(handle, moduleId_, "VoraIoTGetModuleID");
    Bind(handle, getCapability_, "VoraIoTGetMDCapability");
    Bind(handle, getValue_, "VoraIoTGetMDValue");
    Bind(handle, setValue_, "VoraIoTSetMDValue");
    Bind(handle, setEventHandler_, "VoraIoTSetMDEventHandler");
}

ModuleHost::~ModuleHost() {
    if (initialized_) {
        uninitialize();
    }
}

uint32_t ModuleHost::initialize() {
    const uint32_t status = initialize_();
    initialized_ = status == VORADRV_STATUS_SUCCESS;
    return status;
}

uint32_t ModuleHost::uninitialize() {
    initialized_ = false;
    return uninitialize_();
}

std::optional<BoardLibrary> LoadedBoardLibrary() {
    const std::string path = InUse();
    for (const Known& known : kLibraries) {
        if (!path.empty() && BaseName(path) == known.file) {
            return Describe(path, known);
        }
    }
    return std::nullopt;
}

std::optional<Recorder> LoadedRecorder() {
    const std::string path = InUse();
    void* handle = path.empty() ? nullptr : dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr) {
        return std::nullopt;
    }
    const Recorder recorder{reinterpret_cast<int (*)()>(dlsym(handle, "vora_standin_full")),
                            reinterpret_cast<void (*)()>(dlsym(handle, "vora_standin_save"))};
    dlclose(handle);  // the module holds the library open
    if (recorder.full == nullptr || recorder.save == nullptr) {
        return std::nullopt;
    }
    return recorder;
}

}  // namespace voradrv::host
