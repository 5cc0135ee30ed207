#include "LibLoader.h"

#include <dlfcn.h>
#include <sys/stat.h>

namespace voradrv {

namespace {
// RTLD_LAZY | RTLD_GLOBAL: board libraries may resolve each other's symbols.
constexpr int kOpenFlags = RTLD_LAZY | RTLD_GLOBAL;
static_assert(kOpenFlags == 0x101, "board libraries are opened with flags 0x101");
}  // namespace

void* LibLoad(std::string name) {
    const std::string first = "/usr/lib/" + name + ".so";
    const std::string second = "/usr/lib64/" + name + ".so";
    void* handle = dlopen(first.c_str(), kOpenFlags);
    if (handle == nullptr) {
        dlerror();  // the first failure must not be mistaken for a later one
        handle = dlopen(second.c_str(), kOpenFlags);
    }
    return handle;
}

void* LibGetSymbol(void* handle, std::string name) {
    return dlsym(handle, name.c_str());
}

int LibFree(void* handle) {
    return dlclose(handle);
}

}  // namespace voradrv

bool FileExists(std::string path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}
