// The one way the project reads an input file: board profiles, recordings,
// the simulated board's state, web configurations. Only a regular file is
// read, and only up to the limit of its kind: a FIFO, device or directory
// is refused at once, by what it is, and a file over the limit by its size,
// before a byte of it is read into memory (a sparse file of a gigabyte is
// refused as fast as a small one). A link another user planted in a shared
// sticky directory is not followed (Path.h).
#pragma once

#include <cstddef>
#include <string>

#include "files/Path.h"

namespace vorafiles {

struct Limit {
    size_t bytes;
    const char* what;  // "a board profile", for the message
};

// The most each kind of input may be. A profile of the largest board each
// library can present is under 24 KiB, its recording under 80 KiB. A web
// configuration is a few lines; libyaml takes time that grows with the
// square of the nesting, a quarter of a second for 16 KiB of it.
inline constexpr Limit kProfileLimit{1u << 20, "a board profile"};
inline constexpr Limit kStateLimit{1u << 20, "a simulated board's state"};
inline constexpr Limit kRecordingLimit{16u << 20, "a recording"};
inline constexpr Limit kConfigLimit{16u << 10, "a web configuration"};
inline constexpr Limit kKeyLimit{1u << 20, "a certificate or key file"};
// What the module prints during one call, or one reading of every item.
inline constexpr Limit kModuleOutputLimit{1u << 20, "the module's messages"};

// All of the file at `path`. Throws FileError with the reason: "it is a
// FIFO, not a regular file", "it is 1073741824 bytes, more than the 1 MiB a
// board profile may be".
std::string Read(const std::string& path, const Limit& limit);

// Throws FileError, as Read does, when `bytes` are more than `limit`.
void Within(size_t bytes, const Limit& limit);

// All of what the file behind `descriptor` holds, from its start.
std::string ReadDescriptor(int descriptor, const Limit& limit);

}  // namespace vorafiles
