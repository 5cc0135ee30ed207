// The one way the project writes a file: voractl's outputs, the simulated
// board's state, the stand-ins' recordings. Nothing a user points it at is
// destroyed, half written or leaked:
// - "-" is standard output; a path that leads to a descriptor this process
//   holds (/dev/stdout, /dev/stderr, /dev/fd/N, /proc/self/fd/N) is written
//   through that descriptor, so a shell's ">>" keeps appending;
// - a regular file, or none, is replaced atomically: the text goes to a
//   temporary file in the same directory, is synced and renamed over it, so
//   a reader sees the old text or the new and a failure leaves the old. The
//   file keeps its permission bits (a new one gets 0666 less the umask) and,
//   written by root, its owner and group;
// - a symbolic link is followed and its target written by these rules (one
//   that another user planted in a shared sticky directory is refused, see
//   Path.h);
// - a FIFO or character device is opened and written in place; a socket is
//   connected to and written to;
// - a directory or block device is refused.
//
// The temporary file has no name while it is written (O_TMPFILE), and is
// given one, chosen at random and never following anything, only for the
// moment before the rename; where the file system cannot make a nameless
// file, it is made with O_CREAT | O_EXCL | O_NOFOLLOW under a hidden random
// name. Either way it is mode 0600 until it is whole, and removed on every
// way out: errors, and signals, which wait while it has a name.
#pragma once

#include <unistd.h>

#include <string>
#include <string_view>

#include "files/Path.h"

namespace vorafiles {

struct WriteOptions {
    // What "-" writes to.
    int standardOutput = STDOUT_FILENO;
    // Refuses anything but a regular file or none, a link even to a regular
    // file: for a file that is ours alone (the simulated board's state).
    bool regularOnly = false;
};

// Writes `text` to `path` by the rules above. Throws FileError with the
// reason, leaving what was there as it was.
void Write(const std::string& path, std::string_view text, const WriteOptions& options = {});

// Writes all of `text` to `descriptor` where it stands.
void WriteAll(int descriptor, std::string_view text);

// Makes `descriptor`, a file, hold exactly `text`, from its start.
void Rewrite(int descriptor, std::string_view text);

// A file that lives in memory only and is gone with the last descriptor to
// it (memfd): for handing text from one part of a process to another, across
// an exec, without a byte on disk. It is not closed on exec.
int AnonymousFile(const char* name);

}  // namespace vorafiles
