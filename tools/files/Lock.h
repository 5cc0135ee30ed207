// An exclusive lock for a read-modify-write of a file that several
// processes share (the simulated board's state): held on a file beside it,
// PATH.lock, which is never removed, so every process locks the same one
// whatever renames replace PATH meanwhile.
#pragma once

#include <string>

namespace vorafiles {

class Lock {
public:
    // Waits for the lock, 10 seconds at most. Throws FileError.
    explicit Lock(const std::string& path);
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    int fd_ = -1;
};

}  // namespace vorafiles
