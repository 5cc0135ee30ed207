// Where an export or a recording goes: --output FILE, written by the
// project's one file writer (files/Write.h says its rules), "-" or none
// being voractl's standard output.
#pragma once

#include <cstdio>
#include <string>

namespace voractl {

// Writes `text` to `path` (`out` for "-" or ""); throws ToolError, leaving
// what was there as it was.
void WriteOutput(const std::string& path, const std::string& text, std::FILE* out);

}  // namespace voractl
