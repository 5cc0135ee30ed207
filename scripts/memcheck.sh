#!/usr/bin/env bash
# Runs the test suite of a built tree under Valgrind's memcheck: every
# GoogleTest program (through tests/run-test.sh), each test failing on any
# memory error or any byte definitely or indirectly lost. The fault sweep
# (whose runs are child processes of its own) and the lifecycle soak (which
# holds its own heap figures flat) run as they are in the normal test run.
#   memcheck.sh [BUILD_DIR]      (default: build, as ./scripts/build.sh makes it)
# BUILD_DIR must be built without the sanitizers, which memcheck cannot run
# alongside.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
./scripts/install-deps.sh valgrind
VTEST_MEMCHECK=1 ctest --test-dir "$build" -j "$(nproc)" -LE 'sweep|soak' --output-on-failure
