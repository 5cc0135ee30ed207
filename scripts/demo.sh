#!/usr/bin/env bash
# The main job: installs what building needs, builds the module, the
# simulator and voractl (no test program), then shows the simulated
# fourth-generation board through voractl, the way a host sees it through
# the module. Each step says what it does in one line; the build's own
# output is shown only when it fails.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
echo "Building the module, the board simulator and voractl in build/ (about a minute)"
mkdir -p build
if ! ./scripts/build.sh >build/demo-build.log 2>&1; then
    cat build/demo-build.log >&2
    echo "The build failed; its output is above (and in build/demo-build.log)" >&2
    exit 1
fi
voractl=build/tools/voractl/voractl
set -x
"$voractl" --sim list
"$voractl" --sim get "Platform Information/Board name"
