// The driver module loaded the way a host framework loads it: dlopen, the
// seven entry points looked up by name. voractl, the benchmarks, the fuzz
// targets and the tests all load it through this one class.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "voradrv.h"

namespace voradrv::host {

// The module file cannot be opened, or it lacks an entry point.
class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class ModuleHost {
public:
    // Opens the module (RTLD_NOW | RTLD_LOCAL) and binds its seven entry
    // points; throws LoadError.
    explicit ModuleHost(const std::string& path);
    // Uninitialises the module when it is still initialised. The module
    // stays loaded, as does the board library it opened, until the process
    // ends.
    ~ModuleHost();
    ModuleHost(const ModuleHost&) = delete;
    ModuleHost& operator=(const ModuleHost&) = delete;

    const std::string& path() const { return path_; }

    uint32_t initialize();
    uint32_t uninitialize();
    bool initialized() const { return initialized_; }

    uint32_t moduleId() const { return moduleId_(); }
    uint32_t capability(json_t* document) const { return getCapability_(document); }
    uint32_t get(uint32_t id, json_t* value) const { return getValue_(id, value); }
    uint32_t set(uint32_t id, json_t* value) const { return setValue_(id, value); }
    uint32_t setEventHandler(VoraIoTEventHandler handler) const { return setEventHandler_(handler); }

private:
    std::string path_;
    bool initialized_ = false;
    VoraIoTInitialize_fn initialize_ = nullptr;
    VoraIoTUninitialize_fn uninitialize_ = nullptr;
    VoraIoTGetModuleID_fn moduleId_ = nullptr;
    VoraIoTGetMDCapability_fn getCapability_ = nullptr;
    VoraIoTGetMDValue_fn getValue_ = nullptr;
    VoraIoTSetMDValue_fn setValue_ = nullptr;
    VoraIoTSetMDEventHandler_fn setEventHandler_ = nullptr;
};

}  // namespace voradrv::host
