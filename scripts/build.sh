#!/usr/bin/env bash
# Installs what is missing and builds everything into build/ (warnings are
# errors). Extra arguments go to the CMake configure step.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake -S . -B build -DVORADRV_WERROR=ON "$@"
cmake --build build -j "$(nproc)"
