#include "ModuleHost.h"

#include <dlfcn.h>

namespace voradrv::host {

namespace {

template <typename Fn>
void Bind(void* handle, Fn& pointer, const char* name) {
    pointer = reinterpret_cast<Fn>(dlsym(handle, name));
    if (pointer == nullptr) {
        throw LoadError(std::string("the module lacks the entry point ") + name);
    }
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

}  // namespace voradrv::host
