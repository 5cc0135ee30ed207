#!/usr/bin/env bash
# Builds everything and runs the whole test suite (each test in its own
# process, in parallel).
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/build.sh
ctest --test-dir build -j "$(nproc)" --output-on-failure
