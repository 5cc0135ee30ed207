#include "RunTool.h"

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace vtest {

namespace {

// Reads a whole file from its start, leaving the descriptor open.
std::string ReadAll(int fd) {
    std::string text;
    char chunk[4096];
    ssize_t n;
    for (off_t at = 0; (n = pread(fd, chunk, sizeof chunk, at)) > 0; at += n) {
        text.append(chunk, static_cast<size_t>(n));
    }
    return text;
}

int TempFile(const char* kind) {
    std::string path = std::string("/tmp/vtest-") + kind + "-XXXXXX";
    const int fd = mkstemp(path.data());
    unlink(path.c_str());
    return fd;
}

[[noreturn]] void Exec(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& a : arguments) {
        argv.push_back(const_cast<char*>(a.c_str()));
    }
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
}

void SetStatus(ToolResult& result, int status) {
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

double Now() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

}  // namespace

ToolResult RunTool(const std::string& program, const std::vector<std::string>& arguments) {
    return RunningTool(program, arguments).finish(-1);
}

RunningTool::RunningTool(const std::string& program, const std::vector<std::string>& arguments)
    : out_(TempFile("out")), err_(TempFile("err")) {
    std::fflush(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        dup2(out_, 1);
        dup2(err_, 2);
        Exec(program, arguments);
    }
}

RunningTool::~RunningTool() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    close(out_);
    close(err_);
}

bool RunningTool::waitForOutput(const std::string& text, double seconds) {
    for (const double end = Now() + seconds; Now() < end; usleep(20000)) {
        if (ReadAll(out_).find(text) != std::string::npos) {
            return true;
        }
    }
    return false;
}

void RunningTool::kill(int signal) { ::kill(pid_, signal); }

ToolResult RunningTool::finish(double seconds) {
    ToolResult result;
    int status = 0;
    pid_t done = waitpid(pid_, &status, seconds < 0 ? 0 : WNOHANG);
    for (const double end = Now() + seconds; done == 0 && Now() < end;
         done = waitpid(pid_, &status, WNOHANG)) {
        usleep(20000);
    }
    if (done == 0) {
        ::kill(pid_, SIGKILL);
        waitpid(pid_, &status, 0);
    }
    pid_ = -1;
    SetStatus(result, status);
    result.out = ReadAll(out_);
    result.err = ReadAll(err_);
    return result;
}

ToolResult RunOnTerminal(const std::string& program, const std::vector<std::string>& arguments,
                         int columns) {
    int terminal = -1;
    winsize size{};
    size.ws_row = 40;
    size.ws_col = static_cast<unsigned short>(columns);
    std::fflush(nullptr);
    const pid_t pid = forkpty(&terminal, nullptr, nullptr, &size);
    if (pid == 0) {
        Exec(program, arguments);
    }
    ToolResult result;
    // Read until the program closes the terminal (EIO once it has exited).
    for (;;) {
        pollfd readable{terminal, POLLIN, 0};
        if (poll(&readable, 1, 20000) <= 0) {
            break;
        }
        char chunk[4096];
        const ssize_t n = read(terminal, chunk, sizeof chunk);
        if (n <= 0) {
            break;
        }
        result.out.append(chunk, static_cast<size_t>(n));
    }
    int status = 0;
    waitpid(pid, &status, 0);
    SetStatus(result, status);
    close(terminal);
    return result;
}

}  // namespace vtest
