#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, when missing.
#   install-deps.sh [EXTRA_PACKAGE...]
# promtool (package prometheus) checks voractl's Prometheus export, and
# prometheus-node-exporter serves it in an end-to-end test; where systemd
# runs, installing them starts their services.
set -euo pipefail

packages=(cmake g++ make pkg-config binutils libjansson-dev googletest libgtest-dev libgmock-dev
          prometheus prometheus-node-exporter "$@")
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
