#!/usr/bin/env bash
# Runs the test suite of a built tree under Valgrind's memcheck: every
# GoogleTest program (through tests/run-test.sh), each test failing on any
# memory error or any byte definitely or indirectly lost. The fault sweep,
# whose runs are processes of their own, adds one memcheck run of every
# status-only fault (the library leaving its outputs unwritten). The
# lifecycle soak, which holds its own heap figures flat, and the exporter's
# checks, which run no program under memcheck, are left out.
#   memcheck.sh [BUILD_DIR]      (default: build, as ./scripts/build.sh --tests makes it)
# BUILD_DIR must be built without the sanitizers, which memcheck cannot run
# alongside.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
./scripts/install-deps.sh --tests valgrind
VTEST_MEMCHECK=1 ctest --test-dir "$build" -j "$(nproc)" -LE "soak|serve" --output-on-failure
