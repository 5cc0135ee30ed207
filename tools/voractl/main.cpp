// voractl: inspect and drive a board through the VORADrv module, loaded the
// way a host framework loads it.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "Commands.h"
#include "Export.h"
#include "Format.h"
#include "Module.h"
#include "Options.h"
#include "Simulation.h"
#include "Watch.h"

using namespace voractl;

namespace {

// voractl's own output. Where the module's diagnostics (which it prints on
// standard output) would break a document on standard output (--json, an
// export), voractl keeps the original standard output to itself and the
// module's diagnostics go to standard error.
std::FILE* OutputStream(const Options& options) {
    const bool whole = options.json || (options.command == "export" && options.output.empty());
    if (!whole) {
        return stdout;
    }
    std::fflush(stdout);
    const int original = dup(1);
    std::FILE* out = original >= 0 ? fdopen(original, "w") : nullptr;
    if (out == nullptr) {
        throw ToolError("cannot set up the output");
    }
    dup2(2, 1);
    return out;
}

int Run(const Options& options) {
    std::FILE* out = OutputStream(options);
    Module module(options.modulePath.empty() ? DefaultModulePath() : options.modulePath);
    const uint32_t status = module.initialize();
    if (status != VORADRV_STATUS_SUCCESS) {
        std::fflush(stdout);
        std::fprintf(stderr, "voractl: cannot initialise the module: %s\n",
                     StatusText(status).c_str());
        return 1;
    }
    std::unique_ptr<json_t, decltype(&json_decref)> document(json_object(), &json_decref);
    const uint32_t capability = module.capability(document.get());
    if (capability != VORADRV_STATUS_SUCCESS) {
        std::fflush(stdout);
        std::fprintf(stderr, "voractl: cannot read the capability document: %s\n",
                     StatusText(capability).c_str());
        return 1;
    }
    Context context{module, document.get(), CollectItems(document.get()), out, options.json,
                    Style(options.color, out)};
    int exitStatus = 0;
    const std::string& command = options.command;
    if (command == "caps") {
        exitStatus = Caps(context);
    } else if (command == "list") {
        exitStatus = List(context);
    } else if (command == "get") {
        exitStatus = Get(context, options.arguments, options.type);
    } else if (command == "set") {
        exitStatus = Set(context, options.arguments[0], options.arguments[1], options.type);
    } else if (command == "watch") {
        exitStatus = Watch(context, options.arguments, options.interval, options.count);
    } else {
        exitStatus = Export(context, options.format, options.output);
    }
    std::fflush(stdout);
    // A reader that went away (a pager closed early) is no error of ours.
    if ((std::fflush(out) != 0 || std::ferror(out)) && errno != EPIPE) {
        throw ToolError(std::string("cannot write the output: ") + std::strerror(errno));
    }
    return exitStatus;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = ParseOptions(argc, argv);
        EnterSimulation(options.simulation, argv);
        return Run(options);
    } catch (const ToolError& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "voractl: %s\n", e.what());
        return e.usage() ? 2 : 1;
    } catch (const voradrv::host::LoadError& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "voractl: %s\n", e.what());
        return 1;
    }
}
