#include "BoardLibraries.h"

#include <dlfcn.h>
#include <link.h>

#include <vector>

namespace voradrv::host {

namespace {

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
std::vector<std::string> InUse(const KnownLibrary*& known) {
    std::vector<std::string> paths;
    dl_iterate_phdr(Collect, &paths);
    std::vector<std::string> found;
    known = nullptr;
    for (const KnownLibrary& library : kBoardLibraries) {
        std::vector<std::string> these;
        for (const std::string& path : paths) {
            if (BaseName(path) == std::string(library.name) + ".so") {
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

const KnownLibrary* LibraryOfGeneration(const std::string& generation) {
    for (const KnownLibrary& library : kBoardLibraries) {
        if (generation == library.generation) {
            return &library;
        }
    }
    return nullptr;
}

std::string GenerationText(const std::string& generation) {
    const KnownLibrary* library = LibraryOfGeneration(generation);
    return library != nullptr ? library->text : generation;
}

std::optional<BoardLibrary> LoadedBoardLibrary() {
    const KnownLibrary* known = nullptr;
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
    const KnownLibrary* known = nullptr;
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
