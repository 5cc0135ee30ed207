#!/usr/bin/env bash
# Runs each fuzz target for a bounded time on its seed corpus.
#   fuzz.sh [BUILD_DIR [SECONDS]]      (defaults: build-fuzz, 30 for each)
# BUILD_DIR is configured with CC=clang CXX=clang++ and -DVORADRV_FUZZ=ON and
# has the targets built (fuzz_all, see fuzz/CMakeLists.txt). New inputs go to a
# scratch directory, not into fuzz/corpus/; a finding stops the run with the
# input saved there and a non-zero exit status.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-fuzz}
seconds=${2:-30}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

run() {
    local target=$1 corpus=$2
    shift 2
    mkdir -p "$scratch/$target"
    echo "fuzz: $target for ${seconds}s"
    if ! "$@" "$build/fuzz/$target" -max_total_time="$seconds" -timeout=10 \
            -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$scratch/$target/" \
            "$scratch/$target" "fuzz/corpus/$corpus" >"$scratch/$target.log" 2>&1; then
        cat "$scratch/$target.log"
        for input in "$scratch/$target"/{crash,leak,timeout,oom}-*; do
            [ -e "$input" ] && { echo "input $input:"; od -c "$input" | head -20; }
        done
        echo "fuzz: $target found a fault" >&2
        return 1
    fi
    grep -E '^(#[0-9]+.*DONE|stat::number_of_executed_units|Done )' "$scratch/$target.log" || true
}

# The set path reaches the simulated board through the path redirection.
status=0
run fuzz_network_set network_set "$build/sim/run-simulated" -- || status=1
run fuzz_profile profile || status=1
run fuzz_recording recording || status=1
run fuzz_web_config web_config || status=1
exit $status
