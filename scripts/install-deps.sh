#!/usr/bin/env bash
# Installs the Debian packages a job needs, when missing.
#   install-deps.sh [--tests] [EXTRA_PACKAGE...]
# Without --tests: what building the module, the simulator and voractl
# needs (voractl serve is built on libmicrohttpd and zlib). With --tests,
# also what only the tests use: GoogleTest; curl, the HTTP client of the
# exporter's tests; cram
# (python3-cram), which runs voractl's transcripts; promtool (package
# prometheus), which checks voractl's Prometheus export, and
# prometheus-node-exporter, which serves it in an end-to-end test (where
# systemd runs, installing them starts their services).
set -euo pipefail

packages=(cmake g++ make pkg-config libjansson-dev libmicrohttpd-dev zlib1g-dev)
if [ "${1:-}" = --tests ]; then
    shift
    packages+=(binutils googletest libgtest-dev libgmock-dev python3-cram curl prometheus
               prometheus-node-exporter)
fi
packages+=("$@")
missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
        missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=
if [ "$(id -u)" -ne 0 ]; then
    sudo=sudo
fi
echo "Installing: ${missing[*]}"
$sudo apt-get update
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
