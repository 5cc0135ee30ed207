#include "Output.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Format.h"

namespace voractl {

namespace {

[[noreturn]] void Fail(const std::string& path, const std::string& what) {
    throw ToolError("cannot write " + path + ": " + what);
}

[[noreturn]] void FailErrno(const std::string& path, const std::string& what) {
    Fail(path, what + ": " + std::strerror(errno));
}

// Writes all of `text` to `fd`; false on an error (errno says which).
bool WriteAll(int fd, const std::string& text) {
    for (size_t done = 0; done < text.size();) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno != EINTR) {
            return false;
        }
        done += n > 0 ? static_cast<size_t>(n) : 0;
    }
    return true;
}

void ReplaceAtomically(const std::string& path, const std::string& text) {
    const size_t slash = path.rfind('/');
    const std::string dir = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
    // A hidden name that node_exporter's textfile collector (*.prom) skips.
    std::string temporary = (slash == std::string::npos ? "" : dir) + "." + base + ".XXXXXX";
    const int fd = mkstemp(temporary.data());
    if (fd < 0) {
        FailErrno(path, "cannot create a temporary file in " + dir);
    }
    const mode_t mask = umask(0);
    umask(mask);
    bool written = fchmod(fd, 0666 & ~mask) == 0 && WriteAll(fd, text) && fsync(fd) == 0;
    int error = errno;
    if (close(fd) != 0 && written) {
        written = false;
        error = errno;
    }
    if (!written || rename(temporary.c_str(), path.c_str()) != 0) {
        error = written ? errno : error;
        unlink(temporary.c_str());
        errno = error;
        FailErrno(path, written ? "cannot rename " + temporary + " over it" : "cannot write " + temporary);
    }
    // The new name lasts once the directory is on disk too.
    const int dirFd = open(dir.c_str(), O_RDONLY | O_DIRECTORY);
    if (dirFd >= 0) {
        fsync(dirFd);
        close(dirFd);
    }
}

void WriteToSocket(const std::string& path, const std::string& text) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        Fail(path, "the socket's name is too long");
    }
    std::strcpy(address.sun_path, path.c_str());
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0 || connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        !WriteAll(fd, text)) {
        const int error = errno;
        if (fd >= 0) {
            close(fd);
        }
        errno = error;
        FailErrno(path, "cannot send to the socket");
    }
    close(fd);
}

// The file a chain of symbolic links ends at, when it does not exist yet.
std::string Target(std::string path) {
    for (int hops = 0; hops < 40; ++hops) {
        char link[PATH_MAX];
        const ssize_t n = readlink(path.c_str(), link, sizeof link - 1);
        if (n < 0) {
            return path;
        }
        link[n] = '\0';
        const size_t slash = path.rfind('/');
        path = link[0] == '/' || slash == std::string::npos ? std::string(link)
                                                             : path.substr(0, slash + 1) + link;
    }
    errno = ELOOP;
    FailErrno(path, "cannot follow its links");
}

}  // namespace

void WriteOutput(const std::string& path, const std::string& text, std::FILE* out) {
    if (path.empty() || path == "-") {
        std::fputs(text.c_str(), out);
        return;
    }
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        if (errno != ENOENT) {
            FailErrno(path, "cannot look at it");
        }
        // None yet, or a link to none: the file is made where the links end.
        ReplaceAtomically(Target(path), text);
        return;
    }
    if (S_ISREG(status.st_mode)) {
        char real[PATH_MAX];
        if (realpath(path.c_str(), real) == nullptr) {
            FailErrno(path, "cannot follow its links");
        }
        ReplaceAtomically(real, text);
    } else if (S_ISDIR(status.st_mode)) {
        Fail(path, "it is a directory (name a file in it)");
    } else if (S_ISSOCK(status.st_mode)) {
        WriteToSocket(path, text);
    } else if (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)) {
        // Opened by its name, which also reopens what /dev/stdout stands for.
        const int fd = open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        const bool written = fd >= 0 && WriteAll(fd, text);
        const int error = errno;
        if (fd >= 0) {
            close(fd);
        }
        if (!written) {
            errno = error;
            FailErrno(path, "cannot write to it");
        }
    } else {
        Fail(path, "it is neither a file nor a FIFO, character device or socket");
    }
}

}  // namespace voractl
