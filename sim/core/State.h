// The file a simulated board is kept in (VORA_SIM_STATE), shared by every
// process that simulates the board: voractl runs one after another, and
// hosts and voractl runs at the same time. It is only ever a regular file
// (anything else named there is refused, a link too), replaced whole by the
// project's file writer, and changed only under its lock, from the read
// that a change starts from to the save, so no change is lost.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "files/Lock.h"

namespace vorasim {

class StateFile {
public:
    // The file VORA_SIM_STATE names; none when it names nothing.
    StateFile();

    bool kept() const { return !path_.empty(); }
    // Keeps nothing from now on: for a board that another keeps.
    void forget() { path_.clear(); }
    const std::string& path() const { return path_; }

    // The file's text, or none when there is no file yet. Throws
    // vorafiles::FileError.
    std::optional<std::string> read();
    // True when another process replaced the file since this one last read
    // or wrote it.
    bool changed() const;
    // Replaces the file with `text`. Throws vorafiles::FileError.
    void write(const std::string& text);
    // Takes the lock for a change; it lasts as long as `lock` holds it.
    void lock(std::optional<vorafiles::Lock>& lock) const { lock.emplace(path_); }

    // What tells one version of the file from the next.
    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        long long modified = 0;  // nanoseconds
        bool operator!=(const Identity& other) const {
            return device != other.device || inode != other.inode || size != other.size ||
                   modified != other.modified;
        }
    };

private:
    std::optional<Identity> now() const;

    std::string path_;
    std::optional<Identity> seen_;
};

}  // namespace vorasim
