#include "Directory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "files/Path.h"

namespace vorafiles {

void CheckPrivate(const std::string& dir) {
    struct stat status {};
    if (lstat(dir.c_str(), &status) != 0) {
        Fail(dir, errno);
    }
    if (!S_ISDIR(status.st_mode)) {
        throw FileError(dir + " is " + KindOf(status.st_mode) + ", not a directory");
    }
    if (status.st_uid != geteuid()) {
        throw FileError(dir + " belongs to another user (uid " + std::to_string(status.st_uid) + ")");
    }
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        throw FileError(dir + " may be written by other users");
    }
}

std::string RuntimeDirectory(const std::string& name) {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && *runtime != '\0') {
        try {
            CheckPrivate(runtime);
            return runtime;
        } catch (const FileError&) {
            // not ours or not private: as XDG base directories are meant to be used, take another
        }
    }
    const std::string dir = "/tmp/" + name + "-" + std::to_string(geteuid());
    if (mkdir(dir.c_str(), 0700) != 0 && errno != EEXIST) {
        Fail(dir, errno);
    }
    CheckPrivate(dir);
    return dir;
}

}  // namespace vorafiles
