#!/usr/bin/env bash
# Runs the benchmarks on the largest simulated boards, through the path
# redirection: the reads and the capability request on the fourth
# generation, then initialise + capability + uninitialise on each of the
# three generations.
#
#   bench/run.sh [BUILD_DIR] [BENCHMARK_FLAG...]
#
# BUILD_DIR (default build) is configured with -DVORADRV_BENCH=ON. The flags
# go to every benchmark program; the README's figures come from
#   bench/run.sh build --benchmark_repetitions=9 --benchmark_report_aggregates_only=true
set -euo pipefail
cd "$(dirname "$0")/.."
build=build
if [ $# -gt 0 ] && [ "${1#-}" = "$1" ]; then
    build=$1
    shift
fi
if [ ! -x "$build/bench/bench_read" ]; then
    echo "run.sh: no $build/bench/bench_read (configure with -DVORADRV_BENCH=ON)" >&2
    exit 2
fi

# Sensors with a wave stand still at their profile values.
export VORA_SIM_TIME=0
echo "machine: $(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -n 1)," \
    "$(nproc) cores, load average $(cut -d ' ' -f 1-3 /proc/loadavg), $(date -u +%Y-%m-%d)"

simulated() {
    local generation=$1 profile=$2
    shift 2
    "$build/sim/run-simulated" --generation "$generation" \
        --profile "sim/profiles/$profile-largest.json" -- "$@"
}

simulated 4 vora4 "$build/bench/bench_read" "$@"
simulated 4 vora4 "$build/bench/bench_lifecycle" "$@"
simulated 3 vora3 "$build/bench/bench_lifecycle" "$@"
simulated eapi eapi "$build/bench/bench_lifecycle" "$@"
