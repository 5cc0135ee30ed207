#!/usr/bin/env bash
# run-cram.sh CRAM RUNTIME_DIR TEST.t [CRAM_OPTION...]
# Runs one transcript with a fresh, private runtime directory (where voractl
# keeps its simulated board) and bash as its shell.
set -euo pipefail
cram=$1 runtime=$2 test=$3
shift 3
rm -rf "$runtime"
mkdir -p -m 0700 "$runtime"
exec "$cram" --shell=/bin/bash "$@" "$test"
