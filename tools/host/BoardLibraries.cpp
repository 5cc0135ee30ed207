#include "BoardLibraries.h"

#include <dlfcn.h>
#include <link.h>

#include <iterator>
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

// The file behind a stand-in, or `path` itself for any other library.
std::string Target(const std::string& path) {
    void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr) {
        return path;
    }
    const auto* target = static_cast<const char* const*>(dlsym(handle, "vora_standin_target"));
    std::string result = target != nullptr && *target != nullptr ? *target : path;
    dlclose(handle);
    return result;
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

std::optional<BoardLibrary> LoadedBoardLibrary() {
    std::vector<std::string> paths;
    dl_iterate_phdr(Collect, &paths);
    std::optional<BoardLibrary> found;
    size_t rank = 0;  // of the one found, in the module's order, from 1
    for (const std::string& path : paths) {
        for (size_t i = 0; i < std::size(kBoardLibraries); ++i) {
            const KnownLibrary& library = kBoardLibraries[i];
            if (BaseName(path) == std::string(library.name) + ".so" && i + 1 >= rank) {
                found = BoardLibrary{Target(path), library.name, library.generation, library.text};
                rank = i + 1;
            }
        }
    }
    return found;
}

}  // namespace voradrv::host
