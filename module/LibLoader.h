// Opening a board library by its bare name from the two system library
// directories, and looking its symbols up.
#pragma once

#include <string>

namespace voradrv {

// Opens "/usr/lib/" + name + ".so", else "/usr/lib64/" + name + ".so", with
// lazy binding and global visibility. Returns the handle or null; prints
// nothing. The loader's error text of a failed first attempt is discarded.
void* LibLoad(std::string name);

// Address of `name` in `handle`, or null when missing. A null handle searches
// the process's default scope, as the dynamic loader does.
void* LibGetSymbol(void* handle, std::string name);

// Closes `handle`; returns the dynamic loader's result (0 on success).
int LibFree(void* handle);

}  // namespace voradrv

// True when the file status of `path` can be read (any kind of file).
bool FileExists(std::string path);
