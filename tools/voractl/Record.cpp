#include "Record.h"

#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <map>

#include "BoardLibraries.h"
#include "Format.h"
#include "Output.h"
#include "Pace.h"
#include "Printable.h"
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

// The items that could not be read, each named once with its first failure
// and how many of the readings it failed in.
class Failures {
public:
    void add(const std::vector<Reading>& readings) {
        ++readings_;
        for (const Reading& reading : readings) {
            if (!reading.value) {
                auto [at, added] = failed_.emplace(reading.item->path(), Failure{reading.status, 0});
                order_.insert(order_.end(), added ? 1 : 0, reading.item->path());
                ++at->second.count;
            }
        }
    }
    void report() const {
        for (const std::string& path : order_) {
            const Failure& failure = failed_.at(path);
            const std::string in = readings_ == 1 ? ""
                                                  : " in " + std::to_string(failure.count) + " of " +
                                                        std::to_string(readings_) + " readings";
            std::fprintf(stderr, "voractl: cannot read %s: %s%s (recorded)\n", Printable(path).c_str(),
                         StatusText(failure.status).c_str(), in.c_str());
        }
    }
    long readings() const { return readings_; }

private:
    struct Failure {
        uint32_t status;
        long count;
    };
    std::map<std::string, Failure> failed_;
    std::vector<std::string> order_;
    long readings_ = 0;
};

// Reads the board as --duration and --interval say; false when the
// recording filled up first.
bool ReadBoard(Context& context, Failures& failures) {
    Session& session = context.session;
    const Options& options = context.options;
    const long readings = options.duration > 0.0 ? std::lround(std::floor(options.duration / options.interval)) + 1 : 1;
    StopSignals signals;
    Pace pace(options.interval);
    for (long n = 0; n < readings && !StopSignals::stopped(); ++n) {
        if (n > 0 && !pace.wait()) {
            break;
        }
        failures.add(session.readAll(session.items()));
        if (const auto recorder = voradrv::host::LoadedRecorder(); recorder && recorder->full() != 0) {
            return false;
        }
    }
    if (StopSignals::stopped()) {
        std::fprintf(stderr, "voractl: recording stopped after %ld of %ld readings\n", failures.readings(),
                     readings);
    }
    return true;
}

// The recording the stand-in handed over through `channel`. Throws
// ToolError when there is none.
void TakeRecording(int channel, vorarec::Recording& recording) {
    // The stand-in hands the recording over when the library shuts down; a
    // library that did not come up is asked for it.
    if (const auto recorder = voradrv::host::LoadedRecorder()) {
        recorder->save();
    }
    std::string text;
    std::string error;
    try {
        text = channel >= 0 ? vorafiles::ReadDescriptor(channel, vorafiles::kRecordingLimit) : "";
    } catch (const vorafiles::FileError& e) {
        error = e.what();
    }
    if (text.empty() || !recording.load(text, error)) {
        throw ToolError("the board library's answers were not recorded" +
                        (error.empty() ? std::string(" (no board library was reached)") : " (" + error + ")"));
    }
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
    Failures failures;
    bool whole = true;
    if (const uint32_t status = session.tryOpen(); status != VORADRV_STATUS_SUCCESS) {
        std::fprintf(stderr, "voractl: the module did not come up: %s (recorded)\n", StatusText(status).c_str());
    } else {
        whole = ReadBoard(context, failures);
    }
    session.close();
    vorarec::Recording recording;
    TakeRecording(channel, recording);
    failures.report();
    if (context.options.redact) {
        recording.redact();
    }
    WriteOutput(context.options.output, recording.text(), context.out);
    if (!whole || recording.full()) {
        std::fprintf(stderr, "voractl: the recording is full after %ld readings (%zu answers; a recording holds "
                     "at most %zu answers and 16 MiB); it holds what came before\n",
                     failures.readings(), recording.answers(), vorarec::kMostAnswers);
        return 1;
    }
    return 0;
}

}  // namespace voractl
