#include "RunTool.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace vtest {

namespace {

// Reads a file descriptor to its end.
std::string Drain(int fd) {
    std::string text;
    char chunk[4096];
    ssize_t n;
    while ((n = read(fd, chunk, sizeof chunk)) > 0) {
        text.append(chunk, static_cast<size_t>(n));
    }
    close(fd);
    return text;
}

}  // namespace

ToolResult RunTool(const std::string& program, const std::vector<std::string>& arguments) {
    // Both outputs go to files, so neither pipe can fill up and block.
    char outPath[] = "/tmp/vtest-out-XXXXXX";
    char errPath[] = "/tmp/vtest-err-XXXXXX";
    const int out = mkstemp(outPath);
    const int err = mkstemp(errPath);
    unlink(outPath);
    unlink(errPath);
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(out, 1);
        dup2(err, 2);
        std::vector<char*> argv{const_cast<char*>(program.c_str())};
        for (const std::string& a : arguments) {
            argv.push_back(const_cast<char*>(a.c_str()));
        }
        argv.push_back(nullptr);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    ToolResult result;
    int status = 0;
    waitpid(pid, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    lseek(out, 0, SEEK_SET);
    lseek(err, 0, SEEK_SET);
    result.out = Drain(out);
    result.err = Drain(err);
    return result;
}

}  // namespace vtest
