#!/usr/bin/env bash
# Scrapes per second and latency of voractl serve's /metrics on the largest
# simulated board of each generation, side by side in one run with
# node_exporter serving the same board's metrics from its textfile
# collector (the anchor a fleet would otherwise use). Each is asked plainly
# and with Prometheus's own request headers (OpenMetrics, gzip), without
# and with basic auth (the same web configuration for both, a cost-10
# bcrypt hash). Each server is held to core 0, the load generator (wrk, 4
# connections) to core 1; all listen on loopback only.
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

# The password is "scrape-me".
printf 'basic_auth_users:\n  prometheus: $2b$10$0MAwyrQ7Llxs4zKPYrI64Ozv282ZHFQ714frgIjs2CUMC.jW2mpHe\n' \
    > "$scratch/web.yml"
login=(-H "Authorization: Basic $(printf prometheus:scrape-me | base64)")
# As Prometheus 2.42 asks.
prometheus=(-H 'Accept: application/openmetrics-text;version=1.0.0,application/openmetrics-text;version=0.0.1;q=0.75,text/plain;version=0.0.4;q=0.5,*/*;q=0.1'
            -H 'Accept-Encoding: gzip' -H 'User-Agent: Prometheus/2.42.0'
            -H 'X-Prometheus-Scrape-Timeout-Seconds: 10')

free_port() { python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'; }
wait_for() { for _ in $(seq 100); do curl -s -o /dev/null "$@" && return; sleep 0.1; done; echo "no answer from $*" >&2; exit 1; }

# "requests/s median p99" of one URL, with the headers given after it.
measure() {
    taskset -c 1 wrk -t1 -c4 -d"${seconds}s" --latency "$@" | awk '
        $1 == "50%" { median = $2 } $1 == "99%" { p99 = $2 }
        $1 == "Requests/sec:" { rate = $2 }
        END { printf "%s %s %s\n", rate, median, p99 }'
}

printf '%-12s %-18s %-14s %10s %10s %10s %8s\n' board asked server scrapes/s median p99 bytes
for generation in 4 3 eapi; do
    profile=sim/profiles/vora$generation-largest.json
    [ "$generation" = eapi ] && profile=sim/profiles/eapi-largest.json
    mkdir -p "$scratch/textfile-$generation"
    "$voractl" --sim="$profile" --sim-generation "$generation" --quiet export --format prometheus \
        --output "$scratch/textfile-$generation/voradrv.prom"
    for auth in no yes; do
        web=() node_web=() with=()
        if [ "$auth" = yes ]; then
            web=(--web-config "$scratch/web.yml") node_web=(--web.config.file="$scratch/web.yml")
            with=("${login[@]}")
        fi
        rm -f "$VORA_SIM_STATE"
        port=$(free_port)
        taskset -c 0 "$voractl" --sim="$profile" --sim-generation "$generation" --quiet serve \
            --listen "127.0.0.1:$port" "${web[@]}" 2>/dev/null &
        pids+=($!)
        node_port=$(free_port)
        taskset -c 0 prometheus-node-exporter --web.listen-address="127.0.0.1:$node_port" \
            --collector.disable-defaults --collector.textfile --web.disable-exporter-metrics \
            --collector.textfile.directory="$scratch/textfile-$generation" "${node_web[@]}" 2>/dev/null &
        pids+=($!)
        wait_for "http://127.0.0.1:$port/metrics" "${with[@]}"
        wait_for "http://127.0.0.1:$node_port/metrics" "${with[@]}"
        for asked in plain prometheus; do
            headers=("${with[@]}")
            [ "$asked" = prometheus ] && headers+=("${prometheus[@]}")
            label=$asked
            [ "$auth" = yes ] && label="$asked+auth"
            for server in "voractl serve:$port" "node_exporter:$node_port"; do
                url=http://127.0.0.1:${server##*:}/metrics
                read -r rate median p99 < <(measure "$url" "${headers[@]}")
                bytes=$(curl -s "${headers[@]}" "$url" | wc -c)
                printf '%-12s %-18s %-14s %10s %10s %10s %8s\n' "$generation-largest" "$label" \
                    "${server%:*}" "$rate" "$median" "$p99" "$bytes"
            done
        done
        kill -TERM "${pids[@]}"
        wait "${pids[@]}" 2>/dev/null || true
        pids=()
    done
done
