#!/usr/bin/env bash
# Installs the Debian packages built by package.sh, checks the installed
# system (voractl --sim list, nothing where the module probes for board
# libraries, a host built against voradrv-dev running under the installed
# simulator) and removes them again, also when a check fails.
#   check-packages.sh [BUILD_DIR]     (default: build-package)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-package}
sudo=
if [ "$(id -u)" -ne 0 ]; then
    sudo=sudo
fi
scratch=$(mktemp -d)
remove() {
    $sudo dpkg --purge voradrv-dev voradrv-tools voradrv >/dev/null || true
    rm -rf "$scratch"
}
trap remove EXIT
fail() { echo "check-packages: $*" >&2; exit 1; }

$sudo dpkg -i "$build"/voradrv_*.deb "$build"/voradrv-tools_*.deb "$build"/voradrv-dev_*.deb
dpkg -L voradrv voradrv-tools voradrv-dev | grep -E '^/usr/lib(64)?/lib(VORA-|EApi)' &&
    fail "a simulated board library is installed where the module probes"

export VORA_SIM_STATE=$scratch/board.json
set -x
/usr/bin/voractl --sim list
/usr/bin/voractl --sim --sim-generation 4 export --format prometheus --output "$scratch/voradrv.prom"
{ set +x; } 2>/dev/null
grep -q '^voradrv_board_info{.*board_name="VB-4410"' "$scratch/voradrv.prom" || fail "export"
contents=$(dpkg-deb -c "$build"/voradrv-tools_*.deb)
grep -q ' ./usr/share/man/man1/voractl.1.gz$' <<<"$contents" || fail "no man page in voradrv-tools"
for unit in voradrv-exporter.service voradrv-textfile.service voradrv-textfile.timer; do
    [ -f "/usr/lib/systemd/system/$unit" ] || fail "$unit is not installed"
done
if command -v systemd-analyze > /dev/null; then
    systemd-analyze verify --man=no /usr/lib/systemd/system/voradrv-{exporter.service,textfile.service,textfile.timer} ||
        fail "systemd-analyze refuses the installed units"
fi
[ -f /usr/share/voradrv/prometheus/voradrv.rules.yml ] || fail "the alerting rules are not installed"

# A host built against the installed development files.
# shellcheck disable=SC2046
cc -Wall -Wextra -Werror -o "$scratch/host" examples/host.c \
    -DVORADRV_MODULE_PATH="\"$(pkg-config --variable=module voradrv)\"" \
    $(pkg-config --cflags --libs voradrv)
out=$(/usr/libexec/voradrv/run-simulated -- "$scratch/host")
grep -q '^Voltage/VCORE (0x1020201): 1.05 V$' <<<"$out" || fail "the example host against the installed module"
echo "check-packages: installed, run and removed"
