#!/usr/bin/env bash
# Instructions per read for the module alone, a figure that does not depend
# on machine noise: runs each read benchmark of bench_read under callgrind,
# collecting only inside VoraIoTGetMDValue, and takes off what the board
# library's function costs inside it.
#
#   bench/instructions.sh [BUILD_DIR]     (default: build, configured with -DVORADRV_BENCH=ON)
#
# Prints, per read: instructions per read in all, in the library function,
# and in the module (the difference). Exits 1 when a numeric read costs the
# module more than the budget of 300 instructions.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
budget=300

if ! command -v valgrind >/dev/null; then
    echo "instructions.sh: valgrind is not installed" >&2
    exit 2
fi
if [ ! -x "$build/bench/bench_read" ]; then
    echo "instructions.sh: no $build/bench/bench_read (configure with -DVORADRV_BENCH=ON)" >&2
    exit 2
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Benchmark, the library function the read calls, and whether it is numeric.
reads="HwmVoltage VoraBoardGetValue numeric
GpioLevel VoraGPIOGetLevel numeric
InfoBoardName VoraBoardGetStringA text
NetworkAddress VoraBoardGetValue text"

status=0
printf '%-16s %8s %10s %10s %10s\n' read kind total library module
while read -r name function kind; do
    out=$work/$name.callgrind
    if ! VORA_SIM_TIME=0 "$build/sim/run-simulated" --profile sim/profiles/vora4-largest.json -- \
        valgrind --tool=callgrind --callgrind-out-file="$out" --collect-atstart=no \
        --toggle-collect=VoraIoTGetMDValue --compress-strings=no --compress-pos=no \
        "$build/bench/bench_read" --benchmark_filter="^Read/$name/module\$" \
        --benchmark_min_time=0.01 >"$work/$name.log" 2>&1; then
        cat "$work/$name.log" >&2
        exit 1
    fi
    # Callgrind's file: "cfn=" names a callee, "calls=" starts a call whose
    # inclusive cost is on the next line; "totals:" is all that was collected.
    # Every read calls the library function once.
    read -r total library module < <(awk -v fn="$function" '
        /^cfn=/ { callee = substr($0, 5); next }
        /^calls=/ {
            split($1, c, "="); n = c[2]
            getline
            if (callee == fn) { reads += n; cost += $2 }
            next
        }
        /^(totals|summary):/ { all = $2 }
        END {
            if (reads == 0) { print "0 0 0"; exit }
            printf "%.0f %.0f %.0f\n", all / reads, cost / reads, (all - cost) / reads
        }' "$out")
    if [ "$total" = 0 ]; then
        echo "instructions.sh: no call of $function recorded for $name" >&2
        exit 1
    fi
    printf '%-16s %8s %10s %10s %10s\n' "$name" "$kind" "$total" "$library" "$module"
    if [ "$kind" = numeric ] && [ "$module" -gt "$budget" ]; then
        echo "instructions.sh: a $name read costs the module $module instructions, over the budget of $budget" >&2
        status=1
    fi
done <<<"$reads"
exit $status
