#include "Lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

#include "files/Path.h"

namespace vorafiles {

namespace {

constexpr long kMostWaitMs = 10000;

}  // namespace

Lock::Lock(const std::string& path) {
    const std::string name = path + ".lock";
    // Read-only is enough to lock, so whoever may use the file may lock it.
    fd_ = open(name.c_str(), O_RDONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0644);
    struct stat status {};
    if (fd_ < 0 || fstat(fd_, &status) != 0) {
        Fail("cannot open the lock " + name, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        close(fd_);
        throw FileError("the lock " + name + " is " + KindOf(status.st_mode) + ", not a regular file");
    }
    // A holder that stopped (a host halted in a debugger) must not hang
    // every other process: wait a while, then give up.
    long waited = 0;
    for (long step = 1; flock(fd_, LOCK_EX | LOCK_NB) != 0; step = step < 32 ? step * 2 : step) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || waited >= kMostWaitMs) {
            const int error = errno;
            close(fd_);
            if (error == EWOULDBLOCK) {
                throw FileError("another process has held the lock " + name + " for " +
                                std::to_string(kMostWaitMs / 1000) + " seconds");
            }
            Fail("cannot lock " + name, error);
        }
        const timespec pause{0, step * 1000000};
        nanosleep(&pause, nullptr);
        waited += step;
    }
}

Lock::~Lock() { close(fd_); }

}  // namespace vorafiles
