#!/usr/bin/env bash
# Scrapes per second and latency of voractl serve's /metrics on the largest
# simulated board of each generation, side by side in one run with
# node_exporter serving the same board's metrics from its textfile
# collector (the anchor a fleet would otherwise use). Each server is held
# to core 0, the load generator (wrk, 4 connections) to core 1; both
# listen on loopback only.
#   bench/scrape.sh [BUILD_DIR [SECONDS]]     (defaults: build, 10)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
seconds=${2:-10}
./scripts/install-deps.sh wrk prometheus-node-exporter util-linux
voractl=$build/tools/voractl/voractl
scratch=$(mktemp -d)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill -TERM "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$scratch"
}
trap cleanup EXIT
export VORA_SIM_TIME=0 VORA_SIM_STATE=$scratch/board.json

free_port() { python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'; }
wait_for() { for _ in $(seq 100); do curl -sf -o /dev/null "$1" && return; sleep 0.1; done; echo "no answer from $1" >&2; exit 1; }

# "requests/s median p99" of one URL.
measure() {
    taskset -c 1 wrk -t1 -c4 -d"${seconds}s" --latency "$1" | awk '
        $1 == "50%" { median = $2 } $1 == "99%" { p99 = $2 }
        $1 == "Requests/sec:" { rate = $2 }
        END { printf "%s %s %s\n", rate, median, p99 }'
}

printf '%-10s %-16s %12s %10s %10s %8s\n' board server scrapes/s median p99 bytes
for generation in 4 3 eapi; do
    profile=sim/profiles/vora$generation-largest.json
    [ "$generation" = eapi ] && profile=sim/profiles/eapi-largest.json
    rm -f "$VORA_SIM_STATE"
    port=$(free_port)
    taskset -c 0 "$voractl" --sim="$profile" --sim-generation "$generation" --quiet serve \
        --listen "127.0.0.1:$port" 2>/dev/null &
    pids+=($!)
    mkdir -p "$scratch/textfile-$generation"
    "$voractl" --sim="$profile" --sim-generation "$generation" --quiet export --format prometheus \
        --output "$scratch/textfile-$generation/voradrv.prom"
    node_port=$(free_port)
    taskset -c 0 prometheus-node-exporter --web.listen-address="127.0.0.1:$node_port" \
        --collector.disable-defaults --collector.textfile --web.disable-exporter-metrics \
        --collector.textfile.directory="$scratch/textfile-$generation" 2>/dev/null &
    pids+=($!)
    wait_for "http://127.0.0.1:$port/metrics"
    wait_for "http://127.0.0.1:$node_port/metrics"
    for server in "voractl serve:$port" "node_exporter:$node_port"; do
        url=http://127.0.0.1:${server##*:}/metrics
        read -r rate median p99 < <(measure "$url")
        bytes=$(curl -s "$url" | wc -c)
        printf '%-10s %-16s %12s %10s %10s %8s\n' "$generation-largest" "${server%:*}" "$rate" "$median" "$p99" "$bytes"
    done
    kill -TERM "${pids[@]}"
    wait "${pids[@]}" 2>/dev/null || true
    pids=()
done
