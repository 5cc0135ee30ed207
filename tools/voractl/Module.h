// The driver module as voractl loads it (the host loader every host tool
// shares), and where voractl finds it and its other installed files.
#pragma once

#include <string>

#include "ModuleHost.h"

namespace voractl {

using Module = voradrv::host::ModuleHost;

// The module voractl loads without --module: the one installed beside
// voractl, else the one in the build tree.
std::string DefaultModulePath();

// Directory of the running voractl.
std::string ExecutableDirectory();

// An installed file's path: `path` itself when absolute, else taken from the
// directory of the running voractl.
std::string InstalledPath(const std::string& path);

}  // namespace voractl
