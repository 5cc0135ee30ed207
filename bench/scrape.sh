#!/usr/bin/env bash
# Scrapes per second and latency of voractl serve's /metrics on the largest
# simulated board of each generation, side by side in one run with
# node_exporter serving the same board's metrics from its textfile
# collector (the anchor a fleet would otherwise use). Each is asked plainly
# and with Prometheus's own request headers (OpenMetrics, gzip), without
# and with basic auth (the same web configuration for both, a cost-10
# bcrypt hash). Then the same with a board library that takes 1 ms a call
# (every function of it given that latency in the profile), asked as
# Prometheus asks. Each server is held to core 0, the load generator (wrk,
# 4 connections) to core 1; all listen on loopback only. Last, what
# "record --duration" adds to the slow board's load: the library's time per
# second recorded (the recording's own call times), and voractl's processor
# time per second.
#   bench/scrape.sh [BUILD_DIR [SECONDS [RECORD_SECONDS]]]     (defaults: build, 10, twice SECONDS)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
seconds=${2:-10}
record_seconds=${3:-$((2 * seconds))}
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
    # The same board, each of its library's functions (those a reading
    # calls) taking 1 ms.
    slow=$scratch/slow-$generation.json
    "$voractl" --sim="$profile" --sim-generation "$generation" --quiet --trace list 2>&1 >/dev/null |
        sed -n 's/^\([A-Za-z]*\)(.*/\1/p' | sort -u | python3 -c '
import json, sys
board = json.load(open(sys.argv[1]))
board["faults"] = [{"function": name.strip(), "latency_ms": 1} for name in sys.stdin]
json.dump(board, open(sys.argv[2], "w"))' "$profile" "$slow"
    for auth in no yes slow; do
        web=() node_web=() with=() board=$profile
        [ "$auth" = slow ] && board=$slow
        if [ "$auth" = yes ]; then
            web=(--web-config "$scratch/web.yml") node_web=(--web.config.file="$scratch/web.yml")
            with=("${login[@]}")
        fi
        rm -f "$VORA_SIM_STATE"
        port=$(free_port)
        taskset -c 0 "$voractl" --sim="$board" --sim-generation "$generation" --quiet serve \
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
            [ "$auth" = slow ] && [ "$asked" = plain ] && continue
            headers=("${with[@]}")
            [ "$asked" = prometheus ] && headers+=("${prometheus[@]}")
            label=$asked
            [ "$auth" = yes ] && label="$asked+auth"
            [ "$auth" = slow ] && label="$asked,1ms/call"
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

# record: once, and with --duration RECORD_SECONDS; the difference is what
# each further reading costs, from which a minute's recording follows.
echo
echo "record --duration 60 --interval 2 on the 1 ms board, from a single reading and one of ${record_seconds} s:"
printf '%-12s %15s %17s %19s %12s\n' board "once: calls, s" "reading: calls, s" "60 s: library s" "voractl CPU s"
TIMEFORMAT='%U %S'
for generation in 4 3 eapi; do
    slow=$scratch/slow-$generation.json
    for duration in 0 "$record_seconds"; do
        rm -f "$VORA_SIM_STATE"
        { time "$voractl" --sim="$slow" --sim-generation "$generation" --quiet record \
            --duration "$duration" --interval 2 --output "$scratch/recording-$duration.json" 2>/dev/null; } \
            2> "$scratch/time-$duration"
    done
    python3 - "$scratch" "$record_seconds" "$generation" <<'PY'
import json, sys
scratch, seconds, generation = sys.argv[1], float(sys.argv[2]), sys.argv[3]
def load(duration):
    """The library's calls and their time in the recording; voractl's processor time."""
    calls, took = 0, 0.0
    for call in json.load(open(f"{scratch}/recording-{duration}.json"))["calls"]:
        for answer in call.get("answers", [call]):
            calls += answer.get("times", 1)
            took += answer.get("took_us", 0) * answer.get("times", 1) / 1e6
    user, system = open(f"{scratch}/time-{duration}").read().split()
    return calls, took, float(user) + float(system)
(calls_once, once, cpu_once), (calls_longer, longer, cpu_longer) = load("0"), load(sys.argv[2])
further = int(seconds // 2)  # readings after the first
# Each further reading's calls (exact) at the recording's mean time a call
# (the difference of two totals would carry two runs' scheduling noise).
calls_per = (calls_longer - calls_once) / further
per = calls_per * longer / calls_longer
cpu_per = max(cpu_longer - cpu_once, 0) / further
minute, cpu_minute = once + 30 * per, cpu_once + 30 * cpu_per
print(f"{generation + '-largest':12} {calls_once:6} {once:8.3f} {calls_per:8.0f} {per:8.3f} "
      f"{minute:10.2f} ({minute / 60:5.1%}) {cpu_minute:12.3f}")
PY
done
