#include "Module.h"

#include <unistd.h>

#include <climits>

namespace voractl {

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
