// A failure of voractl itself, with the message it ends voractl with.
#pragma once

#include <stdexcept>
#include <string>

namespace voractl {

// A failure of voractl itself: shown as "voractl: <what>" on standard error.
class ToolError : public std::runtime_error {
public:
    // `usage`: the command line was wrong (exit status 2, else 1).
    ToolError(const std::string& what, bool usage = false)
        : std::runtime_error(what), usage_(usage) {}
    bool usage() const { return usage_; }

private:
    bool usage_;
};

}  // namespace voractl
