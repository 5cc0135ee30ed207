// voractl serve: the board as a Prometheus target, for as long as it runs.
#pragma once

#include "Commands.h"

namespace voractl {

// Where serve listens without --listen. The exporter port range 9100-9999
// is taken in full by other exporters; 19719 lies outside it and below
// Linux's ephemeral ports (32768-60999), so no outgoing connection holds it.
inline constexpr const char* kDefaultListen = "127.0.0.1:19719";

// Loads the module once, serves /metrics until SIGTERM or SIGINT, then
// closes every connection and uninitialises the module; SIGHUP rereads the
// web configuration meanwhile, the module left as it is. Returns 0, or
// throws ToolError when it cannot listen.
int Serve(Context& context);

}  // namespace voractl
