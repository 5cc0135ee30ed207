#!/usr/bin/env bash
# Installs what is missing and builds into build/ (warnings are errors).
#   build.sh             the module, the simulator and voractl
#   build.sh --tests     everything, the tests included
# Extra arguments go to the CMake configure step.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ "${1:-}" = --tests ]; then
    shift
    ./scripts/install-deps.sh --tests
    cmake -S . -B build -DVORADRV_WERROR=ON -DVORADRV_TESTS=ON "$@"
    cmake --build build -j "$(nproc)"
else
    ./scripts/install-deps.sh
    cmake -S . -B build -DVORADRV_WERROR=ON -DVORADRV_TESTS=OFF "$@"
    cmake --build build -j "$(nproc)" --target voractl
fi
