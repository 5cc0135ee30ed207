// The driver module, loaded the way a host framework loads it: dlopen and
// the seven entry points looked up by name.
#pragma once

#include <jansson.h>

#include <string>

#include "voradrv.h"

namespace voractl {

class Module {
public:
    // Loads the module file; throws ToolError when it cannot be loaded or
    // lacks an entry point.
    explicit Module(const std::string& path);
    // Uninitialises the module when it is still initialised.
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    uint32_t initialize();
    uint32_t uninitialize();
    uint32_t capability(json_t* document) const { return getCapability_(document); }
    uint32_t get(uint32_t id, json_t* value) const { return getValue_(id, value); }
    uint32_t set(uint32_t id, json_t* value) const { return setValue_(id, value); }

private:
    void* handle_ = nullptr;
    bool initialized_ = false;
    VoraIoTInitialize_fn initialize_ = nullptr;
    VoraIoTUninitialize_fn uninitialize_ = nullptr;
    VoraIoTGetMDCapability_fn getCapability_ = nullptr;
    VoraIoTGetMDValue_fn getValue_ = nullptr;
    VoraIoTSetMDValue_fn setValue_ = nullptr;
};

// The module voractl loads without --module: the one installed beside
// voractl, else the one in the build tree.
std::string DefaultModulePath();

// Directory of the running voractl.
std::string ExecutableDirectory();

// An installed file's path: `path` itself when absolute, else taken from the
// directory of the running voractl.
std::string InstalledPath(const std::string& path);

}  // namespace voractl
