// Checking Prometheus text exposition output, and the tools that read it.
#pragma once

#include <string>

namespace vtest {

// Problems with `text` as Prometheus text exposition: a sample whose family
// has no HELP and TYPE before it, a family whose samples are not together,
// a malformed line. Empty when there are none.
std::string ExpositionProblems(const std::string& text);

// What `promtool check metrics` says against `text`: "" when it accepts it,
// or when promtool (Debian package prometheus) is not installed.
std::string PromtoolProblems(const std::string& text);

// The path of a program found on PATH (or in /usr/bin, /usr/sbin), or "".
std::string FindProgram(const std::string& name);

// A TCP port on 127.0.0.1 that was free a moment ago.
int FreeLoopbackPort();

// The body of GET http://127.0.0.1:<port><path>, or "" when nothing answered.
std::string HttpGet(int port, const std::string& path);

}  // namespace vtest
