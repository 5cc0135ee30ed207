// What the module prints. The module writes its diagnostics to standard
// output (file descriptor 1) with puts and printf, where they would mix with
// voractl's own output. Around every module call voractl points descriptor
// 1 at a buffer of its own and passes what was printed on to standard error,
// line by line as "module: ...", in order, with what a terminal would obey
// escaped (see Printable.h); with `quiet` it is dropped.
#pragma once

#include <cstdio>
#include <string>

namespace voractl {

class ModuleOutput {
public:
    explicit ModuleOutput(bool quiet);
    ~ModuleOutput();
    ModuleOutput(const ModuleOutput&) = delete;
    ModuleOutput& operator=(const ModuleOutput&) = delete;

    // While a Catch lives, what the module prints is caught; when it ends,
    // it is passed on. Catches may nest (the outermost one counts).
    class Catch {
    public:
        explicit Catch(ModuleOutput& output);
        ~Catch();
        Catch(const Catch&) = delete;
        Catch& operator=(const Catch&) = delete;

    private:
        ModuleOutput& output_;
    };

private:
    void begin();
    void end();

    bool quiet_;
    int buffer_ = -1;    // where descriptor 1 points while catching
    int original_ = -1;  // voractl's own standard output
    int depth_ = 0;
    std::string partial_;  // a last line without its line end yet
};

}  // namespace voractl
