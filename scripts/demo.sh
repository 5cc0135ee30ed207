#!/usr/bin/env bash
# The main job: installs what building needs, builds the module, the
# simulator and voractl (no test program), then shows the simulated
# fourth-generation board through voractl, the way a host sees it through
# the module.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/build.sh >/dev/null
voractl=build/tools/voractl/voractl
set -x
"$voractl" --sim list
"$voractl" --sim get "Platform Information/Board name"
