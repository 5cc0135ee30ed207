#include "Host.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace vbench {

namespace {

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "bench: %s\n", what.c_str());
    std::exit(1);
}

}  // namespace

Module& LoadModule() {
    // Kept for the life of the process, as a host keeps its module.
    static Module* module = [] {
        try {
            return new Module(VBENCH_MODULE);
        } catch (const voradrv::host::LoadError& e) {
            Fail(e.what());
        }
    }();
    return *module;
}

void* BoardFunction(const char* library, const char* name) {
    const std::string path = std::string("/usr/lib/") + library + ".so";
    void* handle = ::dlopen(path.c_str(), RTLD_LAZY);
    if (handle == nullptr) {
        Fail("cannot load " + path + " (run under sim/run-simulated): " + ::dlerror());
    }
    void* address = ::dlsym(handle, name);
    if (address == nullptr) {
        Fail(path + " lacks " + name);
    }
    return address;
}

const char* BoardName() {
    static const std::string name = [] {
        const char* path = std::getenv("VORA_SIM_BOARD");
        if (path == nullptr || *path == '\0') {
            return std::string("built-in");
        }
        std::string file = path;
        file = file.substr(file.find_last_of('/') + 1);
        const std::string suffix = ".json";
        if (file.size() > suffix.size() &&
            file.compare(file.size() - suffix.size(), suffix.size(), suffix) == 0) {
            file.resize(file.size() - suffix.size());
        }
        return file;
    }();
    return name.c_str();
}

}  // namespace vbench
