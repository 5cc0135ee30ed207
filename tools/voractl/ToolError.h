// voractl's failures, and the exit status and line each ends it with.
#pragma once

#include <exception>
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

// The exit statuses (voractl(1), EXIT STATUS).
enum ExitStatus : int {
    kExitFailure = 1,   // the module, the board or an output failed
    kExitUsage = 2,     // the command line was wrong
    kExitResource = 3,  // out of memory, or of a thread or another resource of the system's
    kExitInternal = 4,  // a fault of voractl's own: an exception it does not expect
};

// How an exception ends voractl: its status, and the line's words, `reason`
// then `detail` (the exception's own, or ""). Both are static texts or the
// exception's what(), alive while `error` is: nothing is allocated, so it
// holds when memory has run out.
struct Exit {
    int status;
    const char* reason;
    const char* detail;
};
Exit ExitFor(const std::exception_ptr& error) noexcept;

// "voractl: <doing>: <reason><detail>" on standard error (without
// `doing` when it is null), after what voractl printed on standard output;
// returns the status.
int ReportFailure(const char* doing, const std::exception_ptr& error) noexcept;

}  // namespace voractl
