#include "Record.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "Output.h"
#include "Reading.h"
#include "ToolError.h"
#include "files/Read.h"
#include "files/Write.h"
#include "record/Recording.h"

namespace voractl {

namespace {

// The channel this process was given, or -1.
int Channel() {
    const char* given = std::getenv("VORA_RECORD_FD");
    char* end = nullptr;
    const long fd = given != nullptr ? std::strtol(given, &end, 10) : -1;
    return given != nullptr && *given != '\0' && *end == '\0' && fd >= 0 && fd < 65536
               ? static_cast<int>(fd)
               : -1;
}

}  // namespace

int RecordingChannel() {
    try {
        return vorafiles::AnonymousFile("voractl-recording");
    } catch (const vorafiles::FileError& e) {
        throw ToolError(std::string("cannot record: ") + e.what());
    }
}

int Record(Context& context) {
    const int channel = Channel();
    if (channel >= 0) {
        fcntl(channel, F_SETFD, FD_CLOEXEC);  // nothing voractl starts needs it
    }
    Session& session = context.session;
    const int exitStatus = ReportFailures(session.readAll(session.items()));
    session.close();  // the stand-in hands over the recording when the library shuts down
    std::string text;
    std::string error;
    try {
        text = channel >= 0 ? vorafiles::ReadDescriptor(channel, vorafiles::kRecordingLimit) : "";
    } catch (const vorafiles::FileError& e) {
        error = e.what();
    }
    vorarec::Recording recording;
    if (text.empty() || !recording.load(text, error)) {
        throw ToolError("the board library's answers were not recorded" +
                        (error.empty() ? std::string() : " (" + error + ")"));
    }
    if (context.options.redact) {
        recording.redact();
    }
    WriteOutput(context.options.output, recording.text(), context.out);
    return exitStatus;
}

}  // namespace voractl
