// The voractl commands, run on an open session with the board.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "Options.h"
#include "Session.h"
#include "Style.h"

namespace voractl {

struct Context {
    Session& session;
    const Options& options;
    std::FILE* out;  // voractl's own output
    Style style;     // colour, for people
};

// Each returns the exit status: 0, or 1 when the module or board failed.
int Info(Context& context);
int Caps(Context& context);
int List(Context& context);
int Get(Context& context);

}  // namespace voractl
