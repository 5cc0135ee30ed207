#include "State.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

#include "files/Read.h"
#include "files/Write.h"

namespace vorasim {

StateFile::StateFile() {
    const char* path = std::getenv("VORA_SIM_STATE");
    path_ = path != nullptr ? path : "";
}

namespace {

StateFile::Identity IdentityOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size,
            status.st_mtim.tv_sec * 1000000000LL + status.st_mtim.tv_nsec};
}

}  // namespace

std::optional<StateFile::Identity> StateFile::now() const {
    struct stat status {};
    if (lstat(path_.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return IdentityOf(status);
}

std::optional<std::string> StateFile::read() {
    struct stat status {};
    if (lstat(path_.c_str(), &status) != 0) {
        if (errno != ENOENT) {
            vorafiles::Fail("cannot look at it", errno);
        }
        seen_.reset();
        return std::nullopt;
    }
    // Seen, whatever comes of reading it: a file that cannot be used is
    // named once, not at every call, until it changes again.
    seen_ = IdentityOf(status);
    if (!S_ISREG(status.st_mode)) {
        throw vorafiles::FileError("it is " + vorafiles::KindOf(status.st_mode) +
                                   ", not a regular file");
    }
    return vorafiles::Read(path_, vorafiles::kStateLimit);
}

bool StateFile::changed() const {
    const std::optional<Identity> identity = now();
    return identity && (!seen_ || *identity != *seen_);
}

void StateFile::write(const std::string& text) {
    vorafiles::WriteOptions options;
    options.regularOnly = true;
    vorafiles::Write(path_, text, options);
    seen_ = now();
}

}  // namespace vorasim
