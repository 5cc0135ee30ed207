// A directory of this user's own, for the files a tool keeps between runs
// (the simulated board's state): it must belong to the user and be writable
// by no one else, so no other user can plant, replace or remove a file in it.
#pragma once

#include <string>

namespace vorafiles {

// Throws FileError unless `dir` is such a directory (itself, not a link to
// one).
void CheckPrivate(const std::string& dir);

// $XDG_RUNTIME_DIR when it is set and private, else /tmp/NAME-UID, made
// 0700 when missing. Throws FileError when that is not private either.
std::string RuntimeDirectory(const std::string& name);

}  // namespace vorafiles
