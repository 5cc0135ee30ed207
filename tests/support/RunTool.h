// Running a built program and collecting what it prints.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace vtest {

struct ToolResult {
    int status = -1;   // exit status, or -1 when it did not exit normally
    int signal = 0;    // the signal that ended it, if one did
    std::string out;   // standard output
    std::string err;   // standard error
};

// Runs `program` with `arguments` in the current environment and waits for it.
ToolResult RunTool(const std::string& program, const std::vector<std::string>& arguments);

// A program running in the background, its outputs going to files.
class RunningTool {
public:
    RunningTool(const std::string& program, const std::vector<std::string>& arguments);
    ~RunningTool();  // kills it if it still runs
    RunningTool(const RunningTool&) = delete;
    RunningTool& operator=(const RunningTool&) = delete;

    // Waits up to `seconds` until standard output holds `text`; false on time-out.
    bool waitForOutput(const std::string& text, double seconds = 10.0);
    // Sends `signal` to it.
    void kill(int signal);
    // Waits up to `seconds` (without end when negative) for it to end,
    // killing it after that, and returns what it did.
    ToolResult finish(double seconds = 10.0);

private:
    pid_t pid_ = -1;
    int out_ = -1;
    int err_ = -1;
};

// Runs `program` on a pseudo-terminal of `columns` x 40 (its standard input,
// output and error), with `arguments`, and returns everything it wrote there
// (in `out`, `err` left empty).
ToolResult RunOnTerminal(const std::string& program, const std::vector<std::string>& arguments,
                         int columns = 160);

}  // namespace vtest
