#include "Exposition.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdlib>
#include <regex>
#include <set>
#include <sstream>

#include "RunTool.h"

namespace vtest {

std::string ExpositionProblems(const std::string& text) {
    static const std::regex kSample(
        R"(^([a-zA-Z_:][a-zA-Z0-9_:]*)(\{([a-zA-Z_][a-zA-Z0-9_]*="([^"\\\n]|\\[\\"n])*",?)*\})? -?[0-9.e+]+$)");
    static const std::regex kHelp(R"(^# HELP ([a-zA-Z_:][a-zA-Z0-9_:]*) \S.*$)");
    static const std::regex kType(R"(^# TYPE ([a-zA-Z_:][a-zA-Z0-9_:]*) (gauge|counter)$)");
    std::istringstream lines(text);
    std::string line;
    std::string problems;
    std::string help;
    std::string family;  // the family whose samples come now
    std::set<std::string> done;
    std::smatch match;
    while (std::getline(lines, line)) {
        if (std::regex_match(line, match, kHelp)) {
            if (!done.insert(match[1]).second) {
                problems += "family described twice: " + line + "\n";
            }
            help = match[1];
        } else if (std::regex_match(line, match, kType)) {
            if (match[1] != help) {
                problems += "TYPE without its HELP: " + line + "\n";
            }
            family = match[1];
        } else if (std::regex_match(line, match, kSample)) {
            if (match[1] != family) {
                problems += "sample outside its family: " + line + "\n";
            }
        } else {
            problems += "malformed line: " + line + "\n";
        }
    }
    if (!text.empty() && text.back() != '\n') {
        problems += "no line end at the end\n";
    }
    return problems;
}

std::string PromtoolProblems(const std::string& text) {
    const std::string promtool = FindProgram("promtool");
    if (promtool.empty()) {
        return "";
    }
    const ToolResult r = RunTool(
        "/bin/sh", {"-c", "printf '%s' \"$1\" | \"$0\" check metrics", promtool, text});
    return r.status == 0 && r.out.empty() && r.err.empty() ? "" : r.out + r.err;
}

std::string FindProgram(const std::string& name) {
    std::string path = std::getenv("PATH") != nullptr ? std::getenv("PATH") : "";
    path += ":/usr/bin:/usr/sbin";
    std::istringstream dirs(path);
    std::string dir;
    while (std::getline(dirs, dir, ':')) {
        const std::string candidate = dir + "/" + name;
        if (!dir.empty() && access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return "";
}

int FreeLoopbackPort() {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    socklen_t size = sizeof address;
    int port = -1;
    if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
        port = ntohs(address.sin_port);
    }
    close(fd);
    return port;
}

std::string HttpGet(int port, const std::string& path) {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    timeval timeout{5, 0};
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    std::string response;
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
        const std::string request = "GET " + path + " HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n";
        if (write(fd, request.data(), request.size()) == static_cast<ssize_t>(request.size())) {
            char chunk[8192];
            ssize_t n;
            while ((n = read(fd, chunk, sizeof chunk)) > 0) {
                response.append(chunk, static_cast<size_t>(n));
            }
        }
    }
    close(fd);
    const size_t body = response.find("\r\n\r\n");
    return body == std::string::npos ? "" : response.substr(body + 4);
}

}  // namespace vtest
