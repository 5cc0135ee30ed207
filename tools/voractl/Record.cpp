#include "Record.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "Format.h"
#include "Output.h"
#include "Reading.h"
#include "record/Recording.h"

namespace voractl {

std::string RecordingFile() {
    const char* tmp = std::getenv("TMPDIR");
    std::string path = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") +
                       "/voractl-recording-XXXXXX";
    const int fd = mkstemp(path.data());
    if (fd < 0) {
        throw ToolError("cannot make a file for the recording in " + path);
    }
    close(fd);
    return path;
}

int Record(Context& context) {
    Session& session = context.session;
    const int exitStatus = ReportFailures(session.readAll(session.items()));
    session.close();  // the stand-in writes the recording when the library shuts down
    const char* kept = std::getenv("VORA_RECORD");
    const std::string path = kept != nullptr ? kept : "";
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    unlink(path.c_str());
    vorarec::Recording recording;
    std::string error;
    if (path.empty() || !recording.load(text.str(), error)) {
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
