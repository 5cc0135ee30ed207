#!/usr/bin/env bash
# Installs what the tests need, builds everything and runs the whole test
# suite (each test in its own process, in parallel).
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/build.sh --tests
ctest --test-dir build -j "$(nproc)" --output-on-failure
