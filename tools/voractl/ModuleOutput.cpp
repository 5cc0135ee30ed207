#include "ModuleOutput.h"

#include <sys/mman.h>
#include <unistd.h>

#include "Printable.h"
#include "ToolError.h"

namespace voractl {

ModuleOutput::ModuleOutput(bool quiet) : quiet_(quiet) {
    buffer_ = memfd_create("voractl-module-output", MFD_CLOEXEC);
    if (buffer_ < 0) {
        throw ToolError("cannot set up the module's output");
    }
}

ModuleOutput::~ModuleOutput() {
    if (!partial_.empty() && !quiet_) {
        std::fprintf(stderr, "module: %s\n", Printable(partial_).c_str());
    }
    close(buffer_);
}

void ModuleOutput::begin() {
    if (depth_++ > 0) {
        return;
    }
    std::fflush(stdout);
    original_ = dup(1);
    dup2(buffer_, 1);
}

void ModuleOutput::end() {
    if (--depth_ > 0) {
        return;
    }
    std::fflush(stdout);
    dup2(original_, 1);
    close(original_);
    // What the module printed since the catch began, from the buffer's start.
    std::string text;
    char chunk[4096];
    ssize_t n;
    for (off_t at = 0; (n = pread(buffer_, chunk, sizeof chunk, at)) > 0; at += n) {
        text.append(chunk, static_cast<size_t>(n));
    }
    // Emptied for the next catch; the module's writes went through a
    // descriptor that shares this one's offset.
    if (ftruncate(buffer_, 0) != 0 || lseek(buffer_, 0, SEEK_SET) != 0) {
        throw ToolError("cannot set up the module's output");
    }
    text = partial_ + text;
    size_t start = 0;
    for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
        if (!quiet_) {
            std::fprintf(stderr, "module: %s\n", Printable(text.substr(start, end - start)).c_str());
        }
    }
    partial_ = text.substr(start);
}

ModuleOutput::Catch::Catch(ModuleOutput& output) : output_(output) { output_.begin(); }

ModuleOutput::Catch::~Catch() { output_.end(); }

}  // namespace voractl
