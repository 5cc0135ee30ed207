#include "Write.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace vorafiles {

namespace {

// Closes a descriptor when it goes out of scope.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

// Holds back every signal that could end the process from outside (the
// faults a program raises itself pass), so that a temporary file is renamed
// or removed before one lands.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        for (int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS}) {
            sigdelset(&all, fault);
        }
        pthread_sigmask(SIG_BLOCK, &all, &old_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &old_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t old_;
};

// The process's umask, read without changing it: setting it even for a
// moment would race with other threads making files.
mode_t Umask() {
    const int fd = open("/proc/self/status", O_RDONLY | O_CLOEXEC);
    char status[4096] = {};
    const ssize_t n = fd >= 0 ? read(fd, status, sizeof status - 1) : -1;
    if (fd >= 0) {
        close(fd);
    }
    const char* line = n > 0 ? std::strstr(status, "\nUmask:") : nullptr;
    if (line != nullptr) {
        return static_cast<mode_t>(std::strtoul(line + 7, nullptr, 8) & 0777);
    }
    const mode_t mask = umask(022);
    umask(mask);
    return mask;
}

// A hidden name beside `name` that no one can guess.
std::string RandomName(const std::string& name) {
    static const char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    unsigned char bytes[12];
    if (getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes)) {
        Fail("cannot choose a temporary name", errno);
    }
    std::string random = "." + name + ".";
    for (unsigned char b : bytes) {
        random += kLetters[b % (sizeof kLetters - 1)];
    }
    return random;
}

// The temporary file a replacement is written to, in the directory `dir`
// of the file it replaces; removed unless renamed over it.
class Temporary {
public:
    Temporary(int dir, const std::string& dirName, const std::string& name) : dir_(dir) {
        fd_ = openat(dir, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
        if (fd_ >= 0) {
            return;
        }
        if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) {
            Fail("cannot make a temporary file in " + dirName, errno);
        }
        held_.emplace();
        for (int attempt = 0; attempt < 100 && fd_ < 0; ++attempt) {
            name_ = RandomName(name);
            fd_ = openat(dir, name_.c_str(), O_CREAT | O_EXCL | O_NOFOLLOW | O_WRONLY | O_CLOEXEC, 0600);
            if (fd_ < 0 && errno != EEXIST) {
                break;
            }
        }
        if (fd_ < 0) {
            const int error = errno;
            name_.clear();
            Fail("cannot make a temporary file in " + dirName, error);
        }
    }

    ~Temporary() {
        if (!name_.empty()) {
            unlinkat(dir_, name_.c_str(), 0);
        }
        close(fd_);
    }

    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    int fd() const { return fd_; }

    // Puts the file in place of `target`, in one step.
    void commit(const std::string& target) {
        if (name_.empty()) {
            held_.emplace();
            nameIt(target);
        }
        if (renameat(dir_, name_.c_str(), dir_, target.c_str()) != 0) {
            Fail("cannot rename the temporary file " + name_ + " over it", errno);
        }
        name_.clear();
    }

private:
    // Gives the nameless file a fresh name: linkat never follows or replaces
    // what is at the new name.
    void nameIt(const std::string& target) {
        const std::string self = "/proc/self/fd/" + std::to_string(fd_);
        for (int attempt = 0; attempt < 100; ++attempt) {
            const std::string name = RandomName(target);
            // By the descriptor itself with the privilege for it, else
            // through /proc.
            if (linkat(fd_, "", dir_, name.c_str(), AT_EMPTY_PATH) == 0 ||
                (errno == ENOENT &&
                 linkat(AT_FDCWD, self.c_str(), dir_, name.c_str(), AT_SYMLINK_FOLLOW) == 0)) {
                name_ = name;
                return;
            }
            if (errno != EEXIST) {
                Fail("cannot name the temporary file", errno);
            }
        }
        Fail("cannot name the temporary file", EEXIST);
    }

    int dir_;
    int fd_ = -1;
    std::string name_;  // while the file has a name that is not the target's
    std::optional<SignalsHeld> held_;
};

void Replace(const std::string& path, const struct stat* old, std::string_view text) {
    const std::string dir = DirectoryOf(path);
    const Descriptor dirFd(open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dirFd.get() < 0) {
        Fail("cannot open its directory " + dir, errno);
    }
    Temporary temporary(dirFd.get(), dir, NameOf(path));
    WriteAll(temporary.fd(), text);
    if (fsync(temporary.fd()) != 0) {
        Fail("cannot sync it", errno);
    }
    // Owner first: changing it clears set-id bits that the mode then sets.
    if (old != nullptr && geteuid() == 0 && fchown(temporary.fd(), old->st_uid, old->st_gid) != 0) {
        Fail("cannot keep its owner", errno);
    }
    const mode_t mode = old != nullptr ? old->st_mode & 07777 : 0666 & ~Umask();
    if (fchmod(temporary.fd(), mode) != 0) {
        Fail("cannot keep its mode", errno);
    }
    temporary.commit(NameOf(path));
    // The new name lasts once the directory is on disk too.
    fsync(dirFd.get());
}

void InPlace(const std::string& path, std::string_view text) {
    // A FIFO without a reader waits for one, as a shell's redirection does.
    const Descriptor fd(open(path.c_str(), O_WRONLY | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (fd.get() < 0 || fstat(fd.get(), &status) != 0) {
        throw FileError(std::strerror(errno));
    }
    if (!S_ISFIFO(status.st_mode) && !S_ISCHR(status.st_mode)) {
        throw FileError("it was replaced by " + KindOf(status.st_mode) + " while it was opened");
    }
    WriteAll(fd.get(), text);
}

void ToSocket(const std::string& path, std::string_view text) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw FileError("the socket's name is too long");
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const Descriptor fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (fd.get() < 0 || connect(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        Fail("cannot connect to the socket", errno);
    }
    for (size_t done = 0; done < text.size();) {
        const ssize_t n = send(fd.get(), text.data() + done, text.size() - done, MSG_NOSIGNAL);
        if (n < 0 && errno != EINTR) {
            Fail("cannot send to the socket", errno);
        }
        done += n > 0 ? static_cast<size_t>(n) : 0;
    }
}

// Writes `text` over what is at `path` (followed to its end), by its kind
// (`status`).
void WriteOver(const std::string& path, const struct stat& status, std::string_view text,
               const WriteOptions& options) {
    if (S_ISREG(status.st_mode)) {
        // Whoever may not write the file may not replace it either.
        const Descriptor fd(open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (fd.get() < 0) {
            throw FileError(std::strerror(errno));
        }
        Replace(path, &status, text);
    } else if (S_ISDIR(status.st_mode)) {
        throw FileError("it is a directory (name a file in it)");
    } else if (options.regularOnly) {
        throw FileError("it leads to " + KindOf(status.st_mode) + ", not a regular file");
    } else if (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)) {
        InPlace(path, text);
    } else if (S_ISSOCK(status.st_mode)) {
        ToSocket(path, text);
    } else {
        throw FileError("it is " + KindOf(status.st_mode) +
                        ", neither a file nor a FIFO, character device or socket");
    }
}

}  // namespace

void WriteAll(int descriptor, std::string_view text) {
    for (size_t done = 0; done < text.size();) {
        const ssize_t n = write(descriptor, text.data() + done, text.size() - done);
        if (n >= 0) {
            done += static_cast<size_t>(n);
        } else if (errno == EAGAIN) {
            pollfd ready{descriptor, POLLOUT, 0};
            poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            throw FileError(std::strerror(errno));
        }
    }
}

void Rewrite(int descriptor, std::string_view text) {
    if (lseek(descriptor, 0, SEEK_SET) != 0) {
        throw FileError(std::strerror(errno));
    }
    WriteAll(descriptor, text);
    if (ftruncate(descriptor, static_cast<off_t>(text.size())) != 0) {
        throw FileError(std::strerror(errno));
    }
}

int AnonymousFile(const char* name) {
    const int fd = memfd_create(name, 0);
    if (fd < 0) {
        Fail("cannot make a file in memory", errno);
    }
    return fd;
}

void Write(const std::string& path, std::string_view text, const WriteOptions& options) {
    if (path == "-") {
        WriteAll(options.standardOutput, text);
        return;
    }
    if (!path.empty() && path.back() == '/') {
        throw FileError("it names a directory (name a file in it)");
    }
    struct stat status {};
    if (options.regularOnly && lstat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        throw FileError("it is " + KindOf(status.st_mode) + ", not a regular file");
    }
    const Place place = Resolve(path);
    if (place.descriptor >= 0) {
        if (options.regularOnly) {
            throw FileError("it is a descriptor, not a regular file");
        }
        WriteAll(place.descriptor, text);
        return;
    }
    if (lstat(place.path.c_str(), &status) != 0) {
        if (errno != ENOENT) {
            Fail("cannot look at it", errno);
        }
        Replace(place.path, nullptr, text);
        return;
    }
    WriteOver(place.path, status, text, options);
}

}  // namespace vorafiles
