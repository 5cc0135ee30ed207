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
    $sudo dpkg --purge voradrv-dev voradrv-tools voradrv >/dev/null 2>&1 || true
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

# The textfile route as its units run it: the export written by its own
# unprivileged user in its own directory (as StateDirectory= makes it), and
# read through the link the package put in node_exporter's directory.
link=/var/lib/prometheus/node-exporter/voradrv.prom
if command -v systemd-sysusers > /dev/null; then
    getent passwd _voradrv > /dev/null || fail "no user _voradrv for the textfile export"
    [ "$(readlink $link)" = /var/lib/voradrv/voradrv.prom ] || fail "no link to the export in node_exporter's directory"
    $sudo install -d -o _voradrv -g _voradrv -m 0755 /var/lib/voradrv
    $sudo runuser -u _voradrv -- env VORA_SIM_STATE=/var/lib/voradrv/board.json \
        /usr/bin/voractl --sim --quiet export --format prometheus --output /var/lib/voradrv/voradrv.prom
    grep -q '^voradrv_build_info' $link || fail "the export is not read through the link"
fi

# A host built against the installed development files.
# shellcheck disable=SC2046
cc -Wall -Wextra -Werror -o "$scratch/host" examples/host.c \
    -DVORADRV_MODULE_PATH="\"$(pkg-config --variable=module voradrv)\"" \
    $(pkg-config --cflags --libs voradrv)
out=$(/usr/libexec/voradrv/run-simulated -- "$scratch/host")
grep -q '^Voltage/VCORE (0x1020201): 1.05 V$' <<<"$out" || fail "the example host against the installed module"
$sudo dpkg --purge voradrv-dev voradrv-tools voradrv > /dev/null
[ -L $link ] && fail "the link to the export outlives the package"
echo "check-packages: installed, run and removed"
