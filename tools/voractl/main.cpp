// voractl: inspect and drive a board through the VORADrv module, loaded the
// way a host framework loads it.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "CallThread.h"
#include "CommandTable.h"
#include "Commands.h"
#include "Options.h"
#include "Session.h"
#include "Simulation.h"
#include "ToolError.h"

using namespace voractl;

namespace {

// A command that stopped waiting for a call into the module (--timeout,
// or serve stopping) ends here, before the session it left in that call
// is taken down.
int Run(const Options& options) {
    Session session(options.modulePath, options.quiet, options.raw);
    session.setTimeout(options.timeout);
    int exitStatus;
    try {
        if (options.command->opensModule) {
            session.open();
        }
        Context context{session, options, stdout, Style(options.color, stdout)};
        exitStatus = options.command->run(context);
        // A reader that went away (a pager closed early) is no error of ours.
        if ((std::fflush(stdout) != 0 || std::ferror(stdout)) && errno != EPIPE) {
            throw ToolError(std::string("cannot write the output: ") + std::strerror(errno));
        }
    } catch (...) {
        if (!session.abandoned()) {
            throw;
        }
        exitStatus = ReportFailure(nullptr, std::current_exception());
    }
    if (session.abandoned()) {
        Leave(exitStatus);
    }
    return exitStatus;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Options options = ParseOptions(argc, argv, VoractlCommands());
        if (options.command->prepare != nullptr) {
            options.command->prepare(options);
        }
        EnterSimulation(options.simulation, argv);
        return Run(options);
    } catch (...) {
        return ReportFailure(nullptr, std::current_exception());
    }
}
