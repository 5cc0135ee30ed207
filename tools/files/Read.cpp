#include "Read.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vorafiles {

namespace {

std::string Size(size_t bytes) {
    return bytes % (1u << 20) == 0 ? std::to_string(bytes >> 20) + " MiB"
           : bytes % 1024 == 0     ? std::to_string(bytes >> 10) + " KiB"
                                   : std::to_string(bytes) + " bytes";
}

[[noreturn]] void TooLarge(const std::string& size, const Limit& limit) {
    throw FileError("it is " + size + ", more than the " + Size(limit.bytes) + " " + limit.what +
                    " may be");
}

// Reads the regular file behind `fd` from its start, never more than the
// limit and one byte (a file may grow while it is read, and /proc's files
// say they are empty).
std::string ReadOpen(int fd, const Limit& limit) {
    struct stat status {};
    if (fstat(fd, &status) != 0) {
        Fail("cannot look at it", errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throw FileError("it is " + KindOf(status.st_mode) + ", not a regular file");
    }
    if (static_cast<unsigned long long>(status.st_size) > limit.bytes) {
        TooLarge(std::to_string(status.st_size) + " bytes", limit);
    }
    std::string text(static_cast<size_t>(status.st_size) + 1, '\0');
    size_t done = 0;
    for (;;) {
        if (done == text.size()) {
            if (done > limit.bytes) {
                TooLarge("over " + std::to_string(limit.bytes) + " bytes", limit);
            }
            text.resize(std::min(text.size() * 2, limit.bytes + 1));
        }
        const ssize_t n = pread(fd, text.data() + done, text.size() - done, static_cast<off_t>(done));
        if (n == 0) {
            break;
        }
        if (n < 0 && errno != EINTR) {
            Fail("cannot read it", errno);
        }
        done += n > 0 ? static_cast<size_t>(n) : 0;
    }
    text.resize(done);
    return text;
}

}  // namespace

std::string Read(const std::string& path, const Limit& limit) {
    const Place place = Resolve(path);
    // Without waiting: a FIFO opens at once, to be refused.
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int fd = place.descriptor >= 0 ? open(path.c_str(), flags)
                                         : open(place.path.c_str(), flags | O_NOFOLLOW);
    if (fd < 0) {
        throw FileError(std::strerror(errno));
    }
    try {
        std::string text = ReadOpen(fd, limit);
        close(fd);
        return text;
    } catch (...) {
        close(fd);
        throw;
    }
}

void Within(size_t bytes, const Limit& limit) {
    if (bytes > limit.bytes) {
        TooLarge(std::to_string(bytes) + " bytes", limit);
    }
}

std::string ReadDescriptor(int descriptor, const Limit& limit) { return ReadOpen(descriptor, limit); }

}  // namespace vorafiles
