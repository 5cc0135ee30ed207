#!/usr/bin/env bash
# The full lifecycle soak: CYCLES initialise / capability / read-all /
# uninitialise cycles on the largest simulated board of each library
# generation, with the heap and resident memory at cycle 100 and at the end.
#   soak.sh [BUILD_DIR [CYCLES]]      (defaults: build, 10000)
# BUILD_DIR is a configured and built tree (./scripts/build.sh --tests makes build/).
# CI runs fewer cycles as part of the test suite (tests lifecycle_soak.*).
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
cycles=${2:-10000}
for generation in 4 3 eapi; do
    "$build/sim/run-simulated" -- "$build/tests/reliability/lifecycle_soak" "$generation" "$cycles"
done
