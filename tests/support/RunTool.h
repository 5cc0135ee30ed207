// Running a built program and collecting what it prints.
#pragma once

#include <string>
#include <vector>

namespace vtest {

struct ToolResult {
    int status = -1;   // exit status, or -1 when it did not exit normally
    std::string out;   // standard output
    std::string err;   // standard error
};

// Runs `program` with `arguments` in the current environment and waits for it.
ToolResult RunTool(const std::string& program, const std::vector<std::string>& arguments);

}  // namespace vtest
