#include "Output.h"

#include "ToolError.h"
#include "files/Write.h"

namespace voractl {

void WriteOutput(const std::string& path, const std::string& text, std::FILE* out) {
    // What voractl printed before goes first, whichever descriptor the text
    // goes through.
    std::fflush(out);
    std::fflush(stdout);
    vorafiles::WriteOptions options;
    options.standardOutput = fileno(out);
    try {
        vorafiles::Write(path.empty() ? "-" : path, text, options);
    } catch (const vorafiles::FileError& e) {
        throw ToolError("cannot write " + (path.empty() || path == "-" ? "the output" : path) + ": " +
                        e.what());
    }
}

}  // namespace voractl
