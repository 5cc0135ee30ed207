#!/usr/bin/env bash
# Holds voractl serve's memory to flat over a long run of scrapes: one
# connection (so every scrape is a reading of its own) scrapes the default
# simulated board until at least SCRAPES have been answered; the exporter's
# resident memory after the first 1,000 and at the end are printed, and the
# run fails when it grew by more than 256 KiB.
#   serve-soak.sh [BUILD_DIR [SCRAPES]]      (defaults: build, 100000)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
scrapes=${2:-100000}
./scripts/install-deps.sh wrk curl
scratch=$(mktemp -d)
export VORA_SIM_TIME=0 VORA_SIM_STATE=$scratch/board.json
"$build/tools/voractl/voractl" --sim --quiet serve --listen 127.0.0.1:0 2> "$scratch/err" &
server=$!
trap 'kill -TERM $server 2>/dev/null; wait $server 2>/dev/null; rm -rf "$scratch"' EXIT
for _ in $(seq 100); do grep -q serving "$scratch/err" && break; sleep 0.05; done
address=$(grep -o -m 1 '127.0.0.1:[0-9]*' "$scratch/err") ||
    { echo "serve soak: the exporter did not start:" >&2; cat "$scratch/err" >&2; exit 1; }
url=http://$address/metrics
resident() { awk '/^VmRSS:/ { print $2 }' "/proc/$server/status"; }

for _ in $(seq 1000); do curl -s -o /dev/null "$url"; done
before=$(resident)
done_count=0
while [ "$done_count" -lt "$scrapes" ]; do
    count=$(wrk -t1 -c1 -d10s "$url" | awk '/requests in/ { print $1 }')
    done_count=$((done_count + count))
done
after=$(resident)
echo "serve soak: $done_count scrapes; resident $before KiB after 1,000, $after KiB at the end"
[ $((after - before)) -le 256 ] || { echo "serve soak: resident memory grew by $((after - before)) KiB" >&2; exit 1; }
