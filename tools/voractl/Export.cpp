#include "Export.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "Format.h"
#include "Prometheus.h"
#include "Reading.h"
#include "SenML.h"

namespace voractl {

namespace {

[[noreturn]] void Fail(const std::string& what, const std::string& path) {
    throw ToolError("cannot write " + path + ": " + what + ": " + std::strerror(errno));
}

double Now() {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec / 1000000) / 1000.0;
}

}  // namespace

void WriteFileAtomically(const std::string& path, const std::string& text) {
    const size_t slash = path.rfind('/');
    const std::string dir = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
    // A hidden name that node_exporter's textfile collector (*.prom) skips.
    std::string temporary = (slash == std::string::npos ? "" : dir) + "." + base + ".XXXXXX";
    const int fd = mkstemp(temporary.data());
    if (fd < 0) {
        Fail("cannot create a temporary file in " + dir, path);
    }
    const mode_t mask = umask(0);
    umask(mask);
    bool written = fchmod(fd, 0666 & ~mask) == 0;
    for (size_t done = 0; written && done < text.size();) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        written = n > 0 || (n < 0 && errno == EINTR);
        done += n > 0 ? static_cast<size_t>(n) : 0;
    }
    written = written && fsync(fd) == 0;
    int error = errno;
    if (close(fd) != 0 && written) {
        written = false;
        error = errno;
    }
    if (!written || rename(temporary.c_str(), path.c_str()) != 0) {
        error = written ? errno : error;
        unlink(temporary.c_str());
        errno = error;
        Fail(written ? "cannot rename " + temporary + " over it" : "cannot write " + temporary,
             path);
    }
    // The new name lasts once the directory is on disk too.
    const int dirFd = open(dir.c_str(), O_RDONLY | O_DIRECTORY);
    if (dirFd >= 0) {
        fsync(dirFd);
        close(dirFd);
    }
}

int Export(Context& context, const std::string& format, const std::string& output) {
    const std::vector<Reading> readings = ReadAll(context.module, context.items);
    std::string text;
    if (format == "senml") {
        JsonPtr pack = Own(SenmlPack(readings, Now()));
        char* dumped = json_dumps(pack.get(), JSON_INDENT(2) | JSON_REAL_PRECISION(15));
        if (dumped == nullptr) {
            throw ToolError("cannot build the SenML pack");
        }
        text = std::string(dumped) + "\n";
        free(dumped);
    } else {
        text = PrometheusText(readings);
    }
    if (output.empty()) {
        std::fputs(text.c_str(), context.out);
    } else {
        WriteFileAtomically(output, text);
    }
    return ReportFailures(readings);
}

}  // namespace voractl
