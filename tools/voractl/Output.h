// Where an export (or any document voractl writes to a file) goes. Nothing
// a user points --output at is destroyed:
// - "-" is standard output;
// - a regular file, or none, is replaced atomically: written to a hidden
//   temporary file in the same directory, synced and renamed over it, so a
//   reader sees the old text or the new, never half of one (the file gets
//   mode 0666 less the umask);
// - a symbolic link is followed, and its target written by these rules;
// - a FIFO or character device is opened and written to; a socket is
//   connected to and written to;
// - a directory or block device is refused.
#pragma once

#include <cstdio>
#include <string>

namespace voractl {

// Writes `text` to `path` by the rules above (`out` for "-"); throws
// ToolError, leaving what was there as it was.
void WriteOutput(const std::string& path, const std::string& text, std::FILE* out);

}  // namespace voractl
