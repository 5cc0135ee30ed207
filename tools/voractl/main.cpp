// voractl: inspect and drive a board through the VORADrv module, loaded the
// way a host framework loads it.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Commands.h"
#include "Export.h"
#include "Options.h"
#include "Record.h"
#include "Serve.h"
#include "Session.h"
#include "Simulation.h"
#include "ToolError.h"
#include "Watch.h"
#include "Writing.h"

using namespace voractl;

namespace {

int Run(const Options& options) {
    Session session(options.modulePath, options.quiet, options.raw);
    if (options.command != "serve" && options.command != "record") {
        session.open();  // serve keeps serving, and retrying; record records the failure
    }
    Context context{session, options, stdout, Style(options.color, stdout)};
    const std::string& command = options.command;
    int exitStatus = 0;
    if (command == "info") {
        exitStatus = Info(context);
    } else if (command == "caps") {
        exitStatus = Caps(context);
    } else if (command == "list") {
        exitStatus = List(context);
    } else if (command == "get") {
        exitStatus = Get(context);
    } else if (command == "set") {
        exitStatus = Set(context);
    } else if (command == "watch") {
        exitStatus = Watch(context);
    } else if (command == "record") {
        exitStatus = Record(context);
    } else if (command == "serve") {
        exitStatus = Serve(context);
    } else {
        exitStatus = Export(context);
    }
    // A reader that went away (a pager closed early) is no error of ours.
    if ((std::fflush(stdout) != 0 || std::ferror(stdout)) && errno != EPIPE) {
        throw ToolError(std::string("cannot write the output: ") + std::strerror(errno));
    }
    return exitStatus;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Options options = ParseOptions(argc, argv);
        if (options.command == "record" && std::getenv("VORA_RECORD_FD") == nullptr) {
            options.simulation.record = RecordingChannel();
        }
        EnterSimulation(options.simulation, argv);
        return Run(options);
    } catch (...) {
        return ReportFailure(nullptr, std::current_exception());
    }
}
