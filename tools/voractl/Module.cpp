#include "Module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <climits>

#include "Format.h"

namespace voractl {

namespace {

template <typename Fn>
void Bind(void* handle, Fn& pointer, const char* name) {
    pointer = reinterpret_cast<Fn>(dlsym(handle, name));
    if (pointer == nullptr) {
        throw ToolError(std::string("the module lacks the entry point ") + name);
    }
}

}  // namespace

Module::Module(const std::string& path) {
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle_ == nullptr) {
        throw ToolError("cannot load the module " + path + ": " + dlerror());
    }
    Bind(handle_, initialize_, "VoraIoTInitialize");
    Bind(handle_, uninitialize_, "VoraIoTUninitialize");
    Bind(handle_, getCapability_, "VoraIoTGetMDCapability");
    Bind(handle_, getValue_, "VoraIoTGetMDValue");
    Bind(handle_, setValue_, "VoraIoTSetMDValue");
}

Module::~Module() {
    if (initialized_) {
        uninitialize();
    }
    // The module stays loaded: the board library it opened stays loaded too,
    // until the process ends.
}

uint32_t Module::initialize() {
    const uint32_t status = initialize_();
    initialized_ = status == VORADRV_STATUS_SUCCESS;
    return status;
}

uint32_t Module::uninitialize() {
    initialized_ = false;
    return uninitialize_();
}

std::string ExecutableDirectory() {
    char path[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    if (n <= 0) {
        return ".";
    }
    path[n] = '\0';
    std::string text(path);
    return text.substr(0, text.rfind('/'));
}

std::string InstalledPath(const std::string& path) {
    return path.rfind('/', 0) == 0 ? path : ExecutableDirectory() + "/" + path;
}

std::string DefaultModulePath() {
    const std::string installed = InstalledPath(VORACTL_INSTALLED_MODULE);
    if (access(installed.c_str(), R_OK) == 0) {
        return installed;
    }
    return VORACTL_BUILD_MODULE;
}

}  // namespace voractl
