#include "Path.h"

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <deque>

namespace vorafiles {

namespace {

// The kernel's own limit on links followed in one walk.
constexpr int kMostLinks = 40;

std::deque<std::string> Names(const std::string& path) {
    std::deque<std::string> names;
    size_t start = 0;
    while (start <= path.size()) {
        const size_t slash = path.find('/', start);
        const size_t end = slash == std::string::npos ? path.size() : slash;
        if (end > start) {
            names.push_back(path.substr(start, end - start));
        }
        start = end + 1;
    }
    return names;
}

bool Number(const std::string& name) {
    return !name.empty() && name.size() < 10 &&
           name.find_first_not_of("0123456789") == std::string::npos;
}

// True for /proc/PID/fd and /proc/PID/task/TID/fd of this process: the
// directories whose entries are its descriptors.
bool OwnDescriptors(const std::string& dir) {
    const std::string own = "/proc/" + std::to_string(getpid());
    if (dir == own + "/fd") {
        return true;
    }
    const std::string task = own + "/task/";
    return dir.size() > task.size() + 3 && dir.compare(0, task.size(), task) == 0 &&
           dir.compare(dir.size() - 3, 3, "/fd") == 0 &&
           Number(dir.substr(task.size(), dir.size() - 3 - task.size()));
}

// Refuses a link another user planted in a shared sticky directory.
void CheckPlanted(const std::string& dir, const std::string& link, const struct stat& status) {
    struct stat parent {};
    const std::string where = dir.empty() ? "/" : dir;
    if (stat(where.c_str(), &parent) != 0) {
        Fail(where, errno);
    }
    const bool shared = (parent.st_mode & S_ISVTX) != 0 && (parent.st_mode & S_IWOTH) != 0;
    if (shared && status.st_uid != geteuid() && status.st_uid != parent.st_uid) {
        throw FileError(link + " is a link that another user (uid " + std::to_string(status.st_uid) +
                        ") made in the shared directory " + where + "; it is not followed");
    }
}

std::string ReadLink(const std::string& link) {
    char target[PATH_MAX];
    const ssize_t n = readlink(link.c_str(), target, sizeof target - 1);
    if (n < 0) {
        Fail(link, errno);
    }
    return std::string(target, static_cast<size_t>(n));
}

std::string Absolute(const std::string& path) {
    if (path[0] == '/') {
        return path;
    }
    char here[PATH_MAX];
    if (getcwd(here, sizeof here) == nullptr) {
        Fail("the current directory", errno);
    }
    return std::string(here) + "/" + path;
}

// "." stays where the walk is and ".." goes up from `done`, the root's
// parent being the root; false for any other name.
bool Dots(const std::string& name, std::string& done) {
    if (name == "..") {
        done.erase(done.rfind('/') == std::string::npos ? 0 : done.rfind('/'));
    }
    return name == "." || name == "..";
}

// Follows the link at `here`, reached through `done`: its target's names
// go first in `todo`, walked from the root when the target is absolute.
void Follow(const std::string& here, const struct stat& status, std::string& done,
            std::deque<std::string>& todo) {
    CheckPlanted(done, here, status);
    const std::string target = ReadLink(here);
    if (target.empty()) {
        Fail(here, ENOENT);
    }
    if (target[0] == '/') {
        done.clear();
    }
    std::deque<std::string> more = Names(target);
    todo.insert(todo.begin(), more.begin(), more.end());
}

}  // namespace

void Fail(const std::string& what, int error) {
    throw FileError(what + ": " + std::strerror(error));
}

Place Resolve(const std::string& path) {
    if (path.empty()) {
        throw FileError("no file named");
    }
    std::deque<std::string> todo = Names(Absolute(path));
    std::string done;  // what is walked so far, without links; "" is the root
    int links = 0;
    while (!todo.empty()) {
        const std::string name = todo.front();
        todo.pop_front();
        if (Dots(name, done)) {
            continue;
        }
        if (todo.empty() && Number(name) && OwnDescriptors(done)) {
            return Place{std::stoi(name), ""};
        }
        const std::string here = done + "/" + name;
        struct stat status {};
        if (lstat(here.c_str(), &status) != 0) {
            if (errno == ENOENT && todo.empty()) {
                return Place{-1, here};
            }
            Fail(here, errno);
        }
        if (S_ISLNK(status.st_mode)) {
            if (++links > kMostLinks) {
                Fail(path, ELOOP);
            }
            Follow(here, status, done, todo);
            continue;
        }
        if (!todo.empty() && !S_ISDIR(status.st_mode)) {
            Fail(here, ENOTDIR);
        }
        done = here;
    }
    return Place{-1, done.empty() ? "/" : done};
}

std::string KindOf(unsigned mode) {
    switch (mode & S_IFMT) {
        case S_IFREG: return "a regular file";
        case S_IFDIR: return "a directory";
        case S_IFLNK: return "a symbolic link";
        case S_IFIFO: return "a FIFO";
        case S_IFCHR: return "a character device";
        case S_IFBLK: return "a block device";
        case S_IFSOCK: return "a socket";
        default: return "a special file";
    }
}

std::string DirectoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace vorafiles
