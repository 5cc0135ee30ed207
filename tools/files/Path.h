// Where a path leads, found one name at a time as the kernel would walk it,
// so that the writer and the reader know what they are about to touch
// before they touch it:
// - a path that ends at a descriptor this process holds (/dev/stdout,
//   /dev/stderr, /dev/fd/N, /proc/self/fd/N and every other spelling of
//   /proc/PID/fd/N) is that descriptor, not the file it stands for;
// - every other path becomes the absolute path it leads to, without a
//   symbolic link in it; its last name need not exist (a dangling link
//   leads to where it points);
// - a link that another user made in a sticky directory anyone may write
//   (/tmp) is not followed unless it belongs to the directory's owner: the
//   rule the kernel applies when fs.protected_symlinks is set, applied here
//   whatever that setting says.
//
// Every vorafiles function throws FileError; what() is the reason, ready to
// follow "cannot write PATH: " or "cannot read PATH: ".
#pragma once

#include <stdexcept>
#include <string>

namespace vorafiles {

class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A FileError whose reason is strerror(error) after `what`: "what: reason".
[[noreturn]] void Fail(const std::string& what, int error);

struct Place {
    int descriptor = -1;  // >= 0: the path is this descriptor of ours
    std::string path;     // otherwise: where it leads, links followed
};

// What a file's mode says it is, for messages: "a FIFO", "a directory".
std::string KindOf(unsigned mode);

// Where `path` leads. Throws FileError when a link is refused, the links
// loop, or a directory on the way is missing or cannot be looked at.
Place Resolve(const std::string& path);

// The directory part and the last name of an absolute path without links:
// "/a/b" gives "/a" and "b".
std::string DirectoryOf(const std::string& path);
std::string NameOf(const std::string& path);

}  // namespace vorafiles
