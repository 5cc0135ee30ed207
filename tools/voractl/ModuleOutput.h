// What the module prints. The module writes its diagnostics to standard
// output (file descriptor 1) with puts and printf, where they would mix with
// voractl's own output. Around every module call voractl points descriptor
// 1 at a buffer of its own and passes what was printed on to standard error,
// line by line as "module: ...", in order, with what a terminal would obey
// escaped (see Printable.h); with `quiet` it is dropped.
#pragma once

#include <sys/types.h>

#include <mutex>
#include <string>

namespace voractl {

class ModuleOutput {
public:
    // Throws ToolError when there is no buffer to be had.
    explicit ModuleOutput(bool quiet);
    ~ModuleOutput();
    ModuleOutput(const ModuleOutput&) = delete;
    ModuleOutput& operator=(const ModuleOutput&) = delete;

    // While a Catch lives, what the module prints is caught; when it ends,
    // it is passed on. Catches may nest (the outermost one counts). Neither
    // end throws: what cannot be passed on (memory ran out) is said to be
    // lost, and a descriptor that cannot be spared leaves the module
    // printing on standard output.
    class Catch {
    public:
        explicit Catch(ModuleOutput& output) noexcept;
        ~Catch();
        Catch(const Catch&) = delete;
        Catch& operator=(const Catch&) = delete;

    private:
        ModuleOutput& output_;
    };

    // A call under way on another thread will not be waited for: what the
    // module printed is passed on, descriptor 1 is voractl's standard
    // output again, and nothing more is caught (a Catch that ends when the
    // call at last returns does nothing).
    void abandon() noexcept;

private:
    void begin() noexcept;
    void restore() noexcept;
    void end() noexcept;
    // Passes on the whole lines of `text`, keeping the last unfinished one.
    void pass(const std::string& text);
    // Drops what the buffer holds; its size.
    off_t lose() noexcept;

    bool quiet_;
    int buffer_ = -1;    // where descriptor 1 points while catching
    int original_ = -1;  // voractl's own standard output while catching, else -1
    int depth_ = 0;
    bool abandoned_ = false;
    std::mutex mutex_;  // a Catch ends on the thread that calls; abandon() on another
    off_t passed_ = 0;     // of the buffer, passed on already (it could not be emptied)
    std::string partial_;  // a last line without its line end yet
};

}  // namespace voractl
