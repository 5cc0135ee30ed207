// voractl's commands and options, each said once.
#pragma once

#include "Options.h"

namespace voractl {

// The table every part of the command line is made from: usage, each
// command's help, dispatch and the shell completion's lists.
const CommandLine& VoractlCommands();

}  // namespace voractl
