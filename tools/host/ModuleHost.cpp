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

// A symbol of the loaded library `path`, or null.
void* Symbol(const std::string& path, const char* name) {
    void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr) {
        return nullptr;
    }
    void* symbol = dlsym(handle, name);
    dlclose(handle);  // the module holds the library open
    return symbol;
}

// The files of the board library in use as loaded: of the board libraries
// loaded, those of the last in the order the module tries them (a stand-in
// and the library behind it share its name), and which that is.
std::vector<std::string> InUse(const Known*& known) {
    std::vector<std::string> paths;
    dl_iterate_phdr(Collect, &paths);
    std::vector<std::string> found;
    known = nullptr;
    for (const Known& library : kLibraries) {
        std::vector<std::string> these;
        for (const std::string& path : paths) {
            if (BaseName(path) == library.file) {
                these.push_back(path);
            }
        }
        if (!these.empty()) {
            found = these;
            known = &library;
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
    const Known* known = nullptr;
    const std::vector<std::string> paths = InUse(known);
    if (known == nullptr) {
        return std::nullopt;
    }
    BoardLibrary library{paths.front(), known->name, known->generation, ""};
    for (const std::string& path : paths) {
        if (const auto* target = static_cast<const char* const*>(Symbol(path, "vora_standin_target"));
            target != nullptr && *target != nullptr) {
            library.path = *target;
        }
        using Replay = const char* (*)();
        if (const auto replay = reinterpret_cast<Replay>(Symbol(path, "vorasim_replay"))) {
            library.replay = replay();
        }
    }
    return library;
}

std::optional<Recorder> LoadedRecorder() {
    const Known* known = nullptr;
    for (const std::string& path : InUse(known)) {
        const Recorder recorder{reinterpret_cast<int (*)()>(Symbol(path, "vora_standin_full")),
                                reinterpret_cast<void (*)()>(Symbol(path, "vora_standin_save"))};
        if (recorder.full != nullptr && recorder.save != nullptr) {
            return recorder;
        }
    }
    return std::nullopt;
}

}  // namespace voradrv::host
