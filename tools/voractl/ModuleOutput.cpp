#include "ModuleOutput.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

#include "Printable.h"
#include "ToolError.h"
#include "files/Read.h"

namespace voractl {

ModuleOutput::ModuleOutput(bool quiet) : quiet_(quiet) {
    buffer_ = memfd_create("voractl-module-output", MFD_CLOEXEC);
    if (buffer_ < 0) {
        throw ToolError("cannot set up the module's output");
    }
}

ModuleOutput::~ModuleOutput() {
    try {
        if (!partial_.empty()) {
            pass("\n");  // a last line the module did not end
        }
    } catch (...) {
        // Out of memory at the very end: that line is lost.
    }
    close(buffer_);
}

void ModuleOutput::begin() noexcept {
    std::lock_guard<std::mutex> lock(mutex_);
    if (abandoned_ || depth_++ > 0) {
        return;
    }
    std::fflush(stdout);
    original_ = dup(1);
    if (original_ >= 0 && dup2(buffer_, 1) < 0) {
        close(original_);
        original_ = -1;
    }
}

void ModuleOutput::end() noexcept {
    std::lock_guard<std::mutex> lock(mutex_);
    if (abandoned_ || --depth_ > 0 || original_ < 0) {
        return;
    }
    restore();
}

void ModuleOutput::abandon() noexcept {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!abandoned_ && original_ >= 0) {
        restore();
    }
    abandoned_ = true;
}

void ModuleOutput::restore() noexcept {
    std::fflush(stdout);
    dup2(original_, 1);
    close(original_);
    original_ = -1;
    // What the module printed since the catch began, from the buffer's
    // start; its writes went through a descriptor that shares this one's
    // offset.
    off_t size = passed_;
    try {
        const std::string text = vorafiles::ReadDescriptor(buffer_, vorafiles::kModuleOutputLimit);
        size = static_cast<off_t>(text.size());
        pass(text.substr(static_cast<size_t>(passed_)));
    } catch (const vorafiles::FileError& e) {
        size = lose();
        if (!quiet_) {
            std::fprintf(stderr, "voractl: the module's messages are lost: %s\n", e.what());
        }
    } catch (...) {
        size = lose();
        if (!quiet_) {
            ReportFailure("the module's messages are lost", std::current_exception());
        }
    }
    // Emptied for the next catch; when it cannot be, what was passed on is
    // skipped then.
    const bool emptied = ftruncate(buffer_, 0) == 0 && lseek(buffer_, 0, SEEK_SET) == 0;
    passed_ = emptied ? 0 : size;
}

off_t ModuleOutput::lose() noexcept {
    partial_.clear();
    return lseek(buffer_, 0, SEEK_END);
}

void ModuleOutput::pass(const std::string& text) {
    std::string lines = partial_ + text;
    size_t start = 0;
    for (size_t end; (end = lines.find('\n', start)) != std::string::npos; start = end + 1) {
        if (!quiet_) {
            std::fprintf(stderr, "module: %s\n", Printable(lines.substr(start, end - start)).c_str());
        }
    }
    partial_ = lines.substr(start);
}

ModuleOutput::Catch::Catch(ModuleOutput& output) noexcept : output_(output) { output_.begin(); }

ModuleOutput::Catch::~Catch() { output_.end(); }

}  // namespace voractl
